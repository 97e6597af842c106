#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "link/register_write.h"
#include "tuning/desk_texts.h"
#include "tuning/field_visitors.h"
#include "tuning/video_mode.h"

/// The ISP tune page without its window: the chip's basic video settings.
///
/// The chip reports most of them in a reply of 20 bytes, "04020301 012302340345ffff 080011200880c802": lists
/// and polarity, four clamps as words, the flags as single bits, "Color Suppress", dimmer and WDR. Delay, IR
/// on/off and the two tasks are in no reply; the flags are in no file.
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

/// The check boxes of "ISP Flag" and "AE/AWB Task"; the two tasks run until they are stopped.
struct FrontFlags {
  bool test_pattern = false;
  bool raw_data = false;
  bool gamma = false;
  bool brightness = false;
  bool sharpness = false;
  bool saturation = false;
  bool hue = false;
  bool dpc = false;
  bool ae_task = true;
  bool awb_task = true;
  friend bool operator==(const FrontFlags&, const FrontFlags&) = default;
};

/// What the page shows, as it stands before the chip's first answer. Indexes of lists are what the chip or
/// the file said, also where the list has no such item.
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
  FrontFlags flags;
  bool color_suppress = false;
  friend bool operator==(const FrontValues&, const FrontValues&) = default;
};

/// Controls that send as soon as they are used.
enum class FrontControl {
  video_mode,
  colour_order,
  tdn_mode,
  delay,
  ir_on_off,
  led_dimmer,
  polarity,
  clamp_r,
  clamp_gr,
  clamp_gb,
  clamp_b,
  wdr_state,
  test_pattern,
  raw_data,
  gamma,
  brightness,
  sharpness,
  saturation,
  hue,
  dpc,
  ae_task,
  awb_task,
  color_suppress
};

inline constexpr Encoding kFromOne{[](int index) { return index + 1; },
                                   [](int stored) { return stored - 1; }};
inline constexpr Encoding kSuppressed{[](int checked) { return checked != 0 ? 128 : 0; },
                                      [](int stored) { return stored == 128 ? 1 : 0; }};

/// Highest LED dimmer level that its "S" sends; the edit then shows it. "File/Flash Save" does not limit.
inline constexpr int kLedDimmerLimit = 88;

/// Where the chip reports a flag: a bit of the byte at a position of the reply.
struct FlagPlace {
  int reply = Field::kNowhere;
  int bit = 0;
};

/// The page: entries of its own from 454 to 582, and a reply of 40 characters.
struct FrontPage {
  using Values = FrontValues;
  static constexpr DeskTexts kTexts{"front", 0xBE, "ISP Load Fail...", "", ""};

  template <class V, class Visitor>
  static constexpr void fields(V& values, Visitor& visit) {
    using C = FrontControl;
    visit.byte({"video_mode"}, values.video_mode,
               list("Video Mode", kFrontVideoModes, kVideoModeEntry, 0, 0x6E, C::video_mode));
    visit.byte({"colour_order"}, values.colour_order,
               list("RGB Order", kColourOrders, 456, 2, 0x6F, C::colour_order));
    Field tdn = list("TDN Mode", kTdnModes, 462, 4, 0x70, C::tdn_mode);
    tdn.as = &kFromOne;
    tdn.taken = {-1, 254};
    visit.byte({"tdn_mode"}, values.tdn_mode, tdn);
    numbers(values, visit);
    clamps(values.clamp, visit);
    visit.byte({"wdr_state"}, values.wdr_state, list("WDR State", kWdrStates, 549, 38, 0x89, C::wdr_state));
    flags(values.flags, visit);
    visit.byte({"color_suppress"}, values.color_suppress,
               {.caption = "Color Suppress",
                .entry = 552,
                .entry_use = EntryUse::kept_by_control,
                .reply = 34,
                .range = {0, 1},
                .address = 0xAB,
                .sent_by = static_cast<int>(C::color_suppress),
                .as = &kSuppressed});
  }

 private:
  static constexpr Range kBytes{0, 255};
  static constexpr Range kWords{0, 0xFFFF};

  static constexpr Field list(const char* caption, std::span<const char* const> items, int entry, int reply,
                              int address, FrontControl control) {
    return {.caption = caption,
            .entry = entry,
            .reply = reply,
            .range = {0, static_cast<int>(items.size()) - 1},
            .taken = kBytes,
            .format = FieldFormat::list,
            .items = items,
            .address = address,
            .sent_by = static_cast<int>(control),
            .saved = true};
  }

  template <class V, class Visitor>
  static constexpr void numbers(V& values, Visitor& visit) {
    // The delay is kept twice, on purpose.
    visit.byte({"delay"}, values.delay,
               {.caption = "Delay",
                .entry = 457,
                .also_entry = 458,
                .address = 0x71,
                .sent_by = static_cast<int>(FrontControl::delay),
                .saved = true});
    visit.byte({"ir_on_off"}, values.ir_on_off,
               {.caption = "IR On/Off",
                .entry = 464,
                .taken = kWords,
                .address = 0x74,
                .sent_by = static_cast<int>(FrontControl::ir_on_off),
                .saved = true});
    visit.byte({"led_dimmer"}, values.led_dimmer,
               {.caption = "LED Dimmer",
                .entry = 582,
                .reply = 36,
                .range = {0, kLedDimmerLimit},
                .taken = kWords,
                .address = 0x8D,
                .sent_by = static_cast<int>(FrontControl::led_dimmer),
                .saved = true});
    visit.byte({"polarity"}, values.polarity,
               {.caption = "Polarity",
                .entry = 551,
                .reply = 6,
                .range = {0, 1},
                .address = 0xAA,
                .sent_by = static_cast<int>(FrontControl::polarity),
                .saved = true,
                .as = &kFlag});
  }

  template <class Clamp, class Visitor>
  static constexpr void clamps(Clamp& clamp, Visitor& visit) {
    constexpr std::array kNames{"r", "gr", "gb", "b"};
    constexpr std::array kCaptions{"R(0~4095)", "GR(0~4095)", "GB(0~4095)", "B(0~4095)"};
    for (int i = 0; i < 4; ++i)
      visit.word({"clamp", kNames[i]}, clamp[i],
                 {.caption = kCaptions[i],
                  .entry = 465 + 2 * i,
                  .reply = 8 + 4 * i,
                  .range = {0, 4095},
                  .taken = kWords,
                  .address = 0x78 + i,
                  .sent_by = static_cast<int>(FrontControl::clamp_r) + i,
                  .saved = true});
  }

  static constexpr Field flag(const char* caption, int address, FrontControl control, FlagPlace place = {}) {
    return {.caption = caption,
            .reply = place.reply,
            .reply_bit = place.bit,
            .range = {0, 1},
            .address = address,
            .sent_by = static_cast<int>(control)};
  }
  template <class Flags, class Visitor>
  static constexpr void flags(Flags& f, Visitor& visit) {
    using C = FrontControl;
    const auto bit = [&visit](const char* name, auto& value, const Field& field) {
      visit.bit({"flag", name}, value, field);
    };
    bit("test_pattern", f.test_pattern, flag("Test Pattern", 0x82, C::test_pattern, {32, 6}));
    bit("raw_data", f.raw_data, flag("Raw Data", 0x83, C::raw_data, {32, 3}));
    bit("gamma", f.gamma, flag("Gamma", 0x84, C::gamma, {24, 3}));
    bit("brightness", f.brightness, flag("Brightness", 0x85, C::brightness, {26, 1}));
    bit("sharpness", f.sharpness, flag("Sharpness", 0x86, C::sharpness, {28, 4}));
    bit("saturation", f.saturation, flag("Saturation", 0x87, C::saturation, {28, 1}));
    bit("hue", f.hue, flag("HUE", 0x88, C::hue, {28, 0}));
    bit("dpc", f.dpc, flag("DPC", 0x8B, C::dpc, {30, 5}));
    bit("ae_task", f.ae_task, flag("AE Task", reg::kAeTask, C::ae_task));
    bit("awb_task", f.awb_task, flag("AWB Task", reg::kAwbTask, C::awb_task));
  }
};
static_assert(fields_hold<FrontPage>());

/// What `control` sends of the values as they stand, in one flush.
Batch front_write(FrontControl control, const FrontValues& values);
/// "File/Flash Save".
Traffic front_full_save(const FrontValues& values);

}  // namespace qv5123
