#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/desk_texts.h"
#include "tuning/field_visitors.h"
#include "tuning/picker.h"

namespace qv5123 {

namespace lens_register {
/// Takes a row of words: red, green, blue.
inline constexpr std::uint8_t kParameter1 = 0x64;
inline constexpr std::uint8_t kParameter2 = kParameter1 + 1;
}  // namespace lens_register

inline constexpr int kLensParameterMaximum = 4095;
/// What the page calls the columns of its parameters.
inline constexpr std::array kLensColours{"RED", "GREEN", "BLUE"};
inline constexpr int kFlickerOff = 0;
inline constexpr int kFlickerPal = 1;
inline constexpr int kFlickerNtsc = 2;

/// What the lens shading page shows and edits.
struct LensValues {
  bool picker_on = false;
  IspBytes picker_off;  ///< what switches the chip's picker off again; empty while it is off
  PickerPosition picker;
  int step_index = 4;      ///< of "Move Step:", 0..7
  int screen_index = 0;    ///< 0 "1080P", 1 "720P"
  int ratio = 100;         ///< correction ratio, percent, 0..100
  PerColour parameter1{};  ///< 0..4095: what the gain rises by with d^2, 1024 = 1.0
  PerColour parameter2{};  ///< 0..4095: what it falls by with d^4, 1024 = 1.0
  int flicker = kFlickerOff;
  bool calibrated = false;  ///< once a calibration has succeeded: the ratio then recomputes the parameters
  friend bool operator==(const LensValues&, const LensValues&) = default;
};

/// A parameter as a word; what lies above the range on the way in is taken as its end.
inline constexpr Encoding kLensParameter{
    [](int value) { return value; },
    [](int stored) { return stored > kLensParameterMaximum ? kLensParameterMaximum : stored; }};

/// The page's controls that send values.
enum class LensControl { parameter1, parameter2, flicker };

/// The page: twelve entries from 440 on, and a reply of 24 characters in the same order: "040004000400"
/// is 1.0 in red, green and blue of Parameter-1. It leaves as six writes to one register, "@6404*@6400*" and
/// so on.
struct LensPage {
  using Values = LensValues;
  static constexpr DeskTexts kTexts{"lsc", 0x6B, "ISP Load Fail...", "Load Isp ok", "Load File ok"};

  template <class V, class Visitor>
  static constexpr void fields(V& values, Visitor& visit) {
    row("parameter1", "Parameter-1", values.parameter1, 0, LensControl::parameter1, visit);
    row("parameter2", "Parameter-2", values.parameter2, 1, LensControl::parameter2, visit);
  }
  static void keep_place(Values& values, const Values& now) {
    values.picker_on = now.picker_on;
    values.picker_off = now.picker_off;
    values.picker = now.picker;
    values.step_index = now.step_index;
    values.screen_index = now.screen_index;
  }

 private:
  template <class Row, class Visitor>
  static constexpr void row(const char* name, const char* caption, Row& row, int place, LensControl control,
                            Visitor& visit) {
    for (int c = 0; c < 3; ++c)
      visit.word({name, kColourKeys[c]}, row[c],
                 {.caption = {caption, kLensColours[c]},
                  .entry = 440 + 6 * place + 2 * c,
                  .reply = 12 * place + 4 * c,
                  .range = {0, kLensParameterMaximum},
                  .unit = "(1024 is 1.0)",
                  .address = lens_register::kParameter1 + place,
                  .sent_by = static_cast<int>(control),
                  .saved = true,
                  .as = &kLensParameter});
  }
};
static_assert(fields_hold<LensPage>());

/// "S" beside Parameter-1 and beside Parameter-2, each one flush.
Batch lens_send_parameter1(const LensValues& values);
Batch lens_send_parameter2(const LensValues& values);
/// Both, as after a calibration.
Traffic lens_send_parameters(const LensValues& values);
/// "File/Flash Save".
Traffic lens_full_save(const LensValues& values);

/// The flicker mode after a click on "NTSC" or "PAL": a second click on the same box switches off.
constexpr int flicker_after_ntsc(int mode) {
  return mode == kFlickerOff || mode == kFlickerPal ? kFlickerNtsc : kFlickerOff;
}
constexpr int flicker_after_pal(int mode) {
  return mode == kFlickerOff || mode == kFlickerNtsc ? kFlickerPal : kFlickerOff;
}
Batch flicker_mode_write(int mode);

/// Which bytes go to the ISP when the page's picker is switched, after registers kEnable and kCorrection
/// held `enable` and `correction`: correction off while measuring, then the picker itself.
IspBytes lens_picker_switch_bytes(bool on, int enable, int correction);

}  // namespace qv5123
