#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/layout.h"
#include "tuning/picker.h"

namespace qv5123 {

inline constexpr int kLensParameterMaximum = 4095;
inline constexpr int kFlickerOff = 0;
inline constexpr int kFlickerPal = 1;
inline constexpr int kFlickerNtsc = 2;

/// What the lens shading page shows and edits.
struct LensValues {
  bool picker_on = false;
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

/// Entries 440..451.
template <class Values, class Visitor>
void lens_image_layout(Values& values, Visitor& visit) {
  for (std::size_t c = 0; c < 3; ++c) {
    visit.word(440 + 2 * c, values.parameter1[c], kLensParameter);
    visit.word(446 + 2 * c, values.parameter2[c], kLensParameter);
  }
}

/// The reply to kLensLoadTrigger: 24 characters.
template <class Values, class Visitor>
void lens_reply_layout(Values& values, Visitor& visit) {
  for (std::size_t c = 0; c < 3; ++c) {
    visit.word(0 + 4 * c, values.parameter1[c], kLensParameter);
    visit.word(12 + 4 * c, values.parameter2[c], kLensParameter);
  }
}

void save_to_user_data(const LensValues& values, UserDataImage& image);
void reload_from_user_data(LensValues& values, const UserDataImage& image);

/// `current` with the parameters of the reply; nothing when the reply is shorter than 24 characters.
std::optional<LensValues> decode_lens_reply(std::string_view reply, LensValues current);
std::string encode_lens_reply(const LensValues& values);

/// "S" beside Parameter-1 and beside Parameter-2, each one flush.
Batch lens_send_parameter1(const LensValues& values);
Batch lens_send_parameter2(const LensValues& values);
/// Both, as after a calibration.
Traffic lens_send_parameters(const LensValues& values);
/// A write of 0 to it asks for the reply of "Load <- ISP".
inline constexpr std::uint8_t kLensLoadTrigger = 0x6B;
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
