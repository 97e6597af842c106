#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"
#include "link/register_write.h"

/// The ISP tune page without its window: the chip's basic video settings.
namespace qv5123 {

/// "Video Mode" items; the index is the value sent.
inline constexpr std::array<const char*, 16> kFrontVideoModes{
    "2M PAL T_25fps", "2M NTSC T_30fps", "2M PAL A_25fps", "2M NTSC A_30fps",
    "2M PAL C_25fps", "2M NTSC C_30fps", "1M PAL T_25fps", "1M NTSC T_30fps",
    "1M PAL A_25fps", "1M NTSC A_30fps", "1M PAL C_25fps", "1M NTSC C_30fps",
    "CVBS PAL",       "CVBS NTSC",       "1M PAL T_50fps", "1M NTSC T_60fps"};
inline constexpr std::array<const char*, 4> kColourOrders{"GBRG", "BGGR", "RGGB", "GRBG"};
/// The last one only for chips that have it.
inline constexpr std::array<const char*, 4> kTdnModes{"Color", "Black & White", "External", "Auto"};
inline constexpr std::array<const char*, 3> kWdrStates{"Off", "On", "Auto"};

/// The check boxes of "ISP Flag" and "AE/AWB Task".
enum class FrontFlag : std::size_t {
  TestPattern,
  RawData,
  Gamma,
  Brightness,
  Sharpness,
  Saturation,
  Hue,
  Dpc,
  AeTask,
  AwbTask
};
inline constexpr std::size_t kFrontFlagCount = 10;

struct FrontFlagPlace {
  const char* caption;
  std::uint8_t address;
  /// Character position of the flag's byte in the reply, and its bit there; -1 when the chip does not
  /// report the flag.
  int position;
  int bit;
};
inline constexpr std::array<FrontFlagPlace, kFrontFlagCount> kFrontFlags{
    {{"Test Pattern", 0x82, 32, 6},
     {"Raw Data", 0x83, 32, 3},
     {"Gamma", 0x84, 24, 3},
     {"Brightness", 0x85, 26, 1},
     {"Sharpness", 0x86, 28, 4},
     {"Saturation", 0x87, 28, 1},
     {"HUE", 0x88, 28, 0},
     {"DPC", 0x8B, 30, 5},
     {"AE Task", reg::kAeTask, -1, 0},
     {"AWB Task", reg::kAwbTask, -1, 0}}};

/// Black-level clamps, in the order of FrontValues::clamp; sent and stored high byte first.
struct ClampPlace {
  const char* caption;
  std::uint8_t address;
  std::size_t entry;
};
inline constexpr std::array<ClampPlace, 4> kClamps{{{"R(0~4095)", 0x78, 465},
                                                    {"GR(0~4095)", 0x79, 467},
                                                    {"GB(0~4095)", 0x7A, 469},
                                                    {"B(0~4095)", 0x7B, 471}}};

/// What the page shows, as it stands before the chip's first answer.
struct FrontValues {
  int video_mode = 0;
  int colour_order = 0;
  /// Index into kTdnModes; the chip counts from 1.
  int tdn_mode = 0;
  int delay = 0;
  int ir_on_off = 0;
  int led_dimmer = 0;
  /// 1 "+", 0 "-".
  int polarity = 0;
  /// R, GR, GB, B; 0..4095, but more is not refused.
  std::array<int, 4> clamp{};
  int wdr_state = 0;
  /// By FrontFlag; the two tasks run until they are stopped.
  std::array<bool, kFrontFlagCount> flags{false, false, false, false, false, false, false, false, true, true};
  bool color_suppress = false;
  friend bool operator==(const FrontValues&, const FrontValues&) = default;
};

/// Copies what "File/Flash Save" keeps into entries 454..472, 549, 551 and 582.
void save_to_user_data(const FrontValues& values, UserDataImage& image);
/// The reverse; flags and "Color Suppress" stay.
void reload_from_user_data(FrontValues& values, const UserDataImage& image);

/// Register that asks the chip for its settings.
inline constexpr std::uint8_t kFrontQuery = 0xBE;
/// The answer to kFrontQuery. Delay, IR on/off and the two tasks stay those of `current`. Nothing when the
/// reply is too short.
std::optional<FrontValues> decode_front_reply(std::string_view reply, FrontValues current);
/// The answer as the chip gives it, 40 hex digits.
std::string encode_front_reply(const FrontValues& values);

/// Controls that send as soon as they are used; the flags are apart.
enum class FrontControl {
  VideoMode,
  ColourOrder,
  SaveColourOrder,
  TdnMode,
  Delay,
  IrOnOff,
  LedDimmer,
  Polarity,
  ClampR,
  ClampGr,
  ClampGb,
  ClampB,
  WdrState,
  ColorSuppress
};

struct ImageEntry {
  std::size_t index;
  std::uint8_t value;
  friend bool operator==(const ImageEntry&, const ImageEntry&) = default;
};
/// What using a control does: entries are stored, then, for one of the controls, the user data file is
/// written, then the writes leave in one flush.
struct ControlEffect {
  std::vector<ImageEntry> entries;
  Batch writes;
  bool writes_file = false;
  friend bool operator==(const ControlEffect&, const ControlEffect&) = default;
};
ControlEffect front_effect(FrontControl control, const FrontValues& values);
void store(const ControlEffect& effect, UserDataImage& image);
Batch flag_write(FrontFlag flag, bool checked);

/// Highest LED dimmer level that its "S" sends; the edit then shows it. "File/Flash Save" does not limit.
inline constexpr int kLedDimmerLimit = 88;

/// "File/Flash Save", after save_to_user_data and the writing of the user data file.
Traffic front_save_traffic(const FrontValues& values);

}  // namespace qv5123
