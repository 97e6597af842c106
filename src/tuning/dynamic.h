#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/step_table.h"

/// The dynamic AE/AWB control page without its window.
namespace qv5123 {

inline constexpr std::size_t kLightSources = 3;
inline constexpr int kHighestLightSourceKind = 2;
inline constexpr std::array<const char*, kLightSources> kLightSourceNames{"Outdoor", "Light-1", "Light-2"};

/// A light-source selection record: kind 0, 1 or 2, and its value 0..255.
struct LightSource {
  int kind = 0;
  int value = 0;
  friend bool operator==(const LightSource&, const LightSource&) = default;
};

/// AWB weights of one light source, -50..50.
struct AwbWeights {
  int r = 0;
  int b = 0;
  friend bool operator==(const AwbWeights&, const AwbWeights&) = default;
};

/// "Video Mode:" items, by index.
inline constexpr std::array<const char*, 4> kVideoModeNames{"TVI", "AHD", "CVI", "CVBS"};

/// What the page shows; it starts where its bars stand before anything is loaded.
struct DynamicValues {
  int analog_gain = 1;
  int sensor_digital_gain = 1;
  int isp_digital_gain = 1;
  int ae_target = 0;
  int ae_speed = 1;
  /// Register 0x3C; what the chip makes of it is not known to the page.
  int further_ae = 0;
  /// Bit 0 mirror, bit 1 flip.
  int orientation = 0;
  /// By BankId.
  std::array<StepBank, kStepBanks> banks{neutral_step_bank(), neutral_step_bank(), neutral_step_bank(),
                                         neutral_step_bank(), neutral_step_bank()};
  std::array<LightSource, kLightSources> light_sources{};
  /// -64..191 each.
  std::array<int, kLightSources> saturation{};
  std::array<AwbWeights, kLightSources> weights{};
  /// -45..45.
  int hue_angle = 0;
  int dpc_decision = 1;
  int smart_ir = 0;
  /// "Case of IR-LED".
  bool ir_led = false;
  /// Index of "Video Mode:", or a chip's video format code of 14 or more that none of them stands for.
  int video_mode = 0;
  friend bool operator==(const DynamicValues&, const DynamicValues&) = default;
};

/// The bank that the grid shows; nothing when the chip reported a video format that no bank belongs to.
std::optional<BankId> selected_bank(bool ir_led, int video_mode);

struct BarRange {
  int lowest;
  int highest;
};
/// A number with a bar, an edit and a "Set" of one write. The first three ask before they are set, since
/// the ISO steps depend on them.
struct DynamicNumber {
  const char* caption;
  std::uint8_t address;
  std::size_t entry;
  BarRange range;
  int DynamicValues::*value;
};
/// In reply order.
inline constexpr std::array<DynamicNumber, 6> kDynamicNumbers{{
    {"Sensor Analog Gain", 0x37, 285, {1, 100}, &DynamicValues::analog_gain},
    {"Sensor Digital Gain", 0x38, 286, {1, 100}, &DynamicValues::sensor_digital_gain},
    {"ISP Digital Gain", 0x39, 287, {1, 127}, &DynamicValues::isp_digital_gain},
    {"AE Target", 0x3A, 288, {0, 50}, &DynamicValues::ae_target},
    {"AE Speed", 0x3B, 289, {1, 8}, &DynamicValues::ae_speed},
    {"AE 0x3C", 0x3C, 290, {0, 255}, &DynamicValues::further_ae},
}};
inline constexpr std::size_t kGainCount = 3;
inline constexpr char kGainQuestionTitle[] = "Gain Control";
inline constexpr char kGainQuestion[] = "If this option changed, must be reset of Image TUNE by ISO step";

inline constexpr BarRange kLightSourceRange{-250, 250};
inline constexpr BarRange kSaturationRange{-64, 191};
inline constexpr BarRange kWeightRange{-50, 50};
inline constexpr BarRange kDpcRange{1, 255};
inline constexpr BarRange kHueRange{-45, 45};

/// Entry of the mirror/flip flags, stored as soon as they change.
inline constexpr std::size_t kOrientationEntry = 291;

/// Position of "Light source Sum :" for a record: its value, negated for kind 0.
int light_source_bar(const LightSource& record);
/// The record after the bar was moved: below 0 kind 0, above 0 kind 1 unless it was 2; at 0 the kind stays.
LightSource light_source_from_bar(int bar, const LightSource& before);

/// One byte for -45..45: angles below 0 follow after 45.
constexpr int encode_hue(int angle) {
  return angle >= 0 ? angle : 45 - angle;
}
constexpr int decode_hue(int stored) {
  return stored <= 45 ? stored : 45 - stored;
}

/// "Video Mode:" index for a chip's video format code; codes above 13 stay as they are.
int video_mode_of_format(int code);
/// A format code that video_mode_of_format maps to `video_mode`.
int format_of_video_mode(int video_mode);

/// Copies the values into entries 201..212, 285..381, 436..439, 478, 583, 592..633, 707..748 and 803..844.
/// The entries of a light-source record of no known kind are left alone.
void save_to_user_data(const DynamicValues& values, UserDataImage& image);
/// The reverse. The IR-LED check and the video mode have no entries and stay.
void reload_from_user_data(DynamicValues& values, const UserDataImage& image);

/// Register that asks the chip for all values.
inline constexpr std::uint8_t kDynamicQuery = 0x69;
/// The answer to kDynamicQuery, 243 bytes. Nothing when it is too short.
std::optional<DynamicValues> decode_dynamic_reply(std::string_view reply, DynamicValues current);
/// The answer as the chip gives it.
std::string encode_dynamic_reply(const DynamicValues& values);

/// Limits all six AWB weights to -50..50.
void limit_weights(DynamicValues& values);

Batch number_write(const DynamicValues& values, const DynamicNumber& number);
/// "MIRROR", "FLIP" and "None".
Traffic orientation_traffic(const DynamicValues& values);
/// "Set" of "Light source Sum :"; `source` is 0..2 here and below.
Traffic light_source_traffic(const DynamicValues& values, std::size_t source);
Traffic saturation_traffic(const DynamicValues& values, std::size_t source);
/// "Set" of the AWB weights, after limit_weights: one flush of four writes.
Batch weights_write(const DynamicValues& values, std::size_t source);
Batch hue_write(const DynamicValues& values);
/// "Set" of "Decision Value": three parameters that only the image knows, and the value.
Batch dpc_write(const DynamicValues& values, const UserDataImage& image);
Batch smart_ir_write(const DynamicValues& values);

/// How long the chip is left alone after a full save: it stores to flash.
inline constexpr std::chrono::seconds kFlashStoreTime{10};

struct DynamicSave {
  /// The values after the order of the grid's rows was corrected.
  DynamicValues values;
  Traffic traffic;
  std::vector<StepMessage> messages;
};
/// "File/Flash Save". `grid` is what stands in the edits of the selected bank.
DynamicSave dynamic_save(DynamicValues values, const StepGrid& grid, const UserDataImage& image);

}  // namespace qv5123
