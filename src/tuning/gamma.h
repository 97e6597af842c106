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
#include "tuning/layout.h"

namespace qv5123 {

inline constexpr std::size_t kGammaPoints = 22;
/// Largest value of a curve point; the smallest is 0.
inline constexpr int kGammaMaximum = 1023;

/// The values of a curve at the sample positions.
using GammaCurve = std::array<int, kGammaPoints>;

/// Position of each point on the input scale 0..1023.
inline constexpr GammaCurve kGammaPositions = {0,   8,   16,  24,  32,  48,  64,  80,  96,  128, 160,
                                               192, 224, 256, 320, 384, 448, 512, 640, 768, 896, 1023};

enum GammaCurveId { kRedCurve, kGreenCurve, kBlueCurve, kFrontCurve };
inline constexpr std::size_t kGammaCurves = 4;

/// The radio buttons in the order of their values; the values are what the chip and the files keep.
enum GammaChannel { kGammaGreen, kGammaBlue, kGammaRed, kGammaRgb, kGammaFront };

/// What the gamma page shows and edits.
struct GammaValues {
  std::array<GammaCurve, kGammaCurves> curves{};  ///< by GammaCurveId, points 0..1023
  GammaChannel channel = kGammaRgb;               ///< what Set and Apply act on
  /// The selection last loaded from the user data: the one that a full save keeps on the chip.
  GammaChannel loaded_channel = kGammaRgb;
  double gamma_value = 0.45;
  double front_gamma_value = 1.0;
  bool itu_709 = false;  ///< "Standard ITU.709 Gamma"

  GammaCurve& curve(GammaCurveId id) { return curves[id]; }
  const GammaCurve& curve(GammaCurveId id) const { return curves[id]; }
  friend bool operator==(const GammaValues&, const GammaValues&) = default;
};

/// The curves that a selection means, in the order in which they are computed and sent.
std::vector<GammaCurveId> selected_curves(GammaChannel channel);

/// The selection after a click on the radio button `clicked`: the front radio falls back to all three.
constexpr GammaChannel channel_after_click(GammaChannel clicked) {
  return clicked == kGammaFront ? kGammaRgb : clicked;
}

/// Where a spin button at `current` comes to stand after `delta`.
int spin_gamma_point(int current, int delta);

/// A point as a word; what lies above the scale on the way in is taken as its end.
inline constexpr Encoding kGammaPoint{
    [](int value) { return value; },
    [](int stored) { return stored > kGammaMaximum ? kGammaMaximum : stored; }};
/// A front point as a word: the chip keeps two more fraction bits.
inline constexpr Encoding kFrontGammaPoint{
    [](int value) { return value << 2; },
    [](int stored) { return (stored >> 2) > kGammaMaximum ? kGammaMaximum : stored >> 2; }};
/// What is no selection counts as all three curves, as before anything was chosen.
inline constexpr Encoding kGammaChannel{
    [](int value) { return value; },
    [](int stored) { return stored > kGammaFront ? static_cast<int>(kGammaRgb) : stored; }};

/// Entries 44..176: the selection and the three end curves, red, green, blue.
template <class Values, class Visitor>
void gamma_image_layout(Values& values, Visitor& visit) {
  visit.byte(44, values.channel, kGammaChannel);
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    visit.word(45 + 2 * i, values.curves[kRedCurve][i], kGammaPoint);
    visit.word(89 + 2 * i, values.curves[kGreenCurve][i], kGammaPoint);
    visit.word(133 + 2 * i, values.curves[kBlueCurve][i], kGammaPoint);
  }
}

/// Entries 0..43: the front curve, which the page loads but never stores.
template <class Values, class Visitor>
void gamma_front_image_layout(Values& values, Visitor& visit) {
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    visit.word(2 * i, values.curves[kFrontCurve][i], kFrontGammaPoint);
  }
}

/// The reply to kGammaLoadTrigger: four characters to a point, 352 in all.
template <class Values, class Visitor>
void gamma_reply_layout(Values& values, Visitor& visit) {
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    visit.word(0 + 4 * i, values.curves[kFrontCurve][i], kFrontGammaPoint);
    visit.word(88 + 4 * i, values.curves[kRedCurve][i], kGammaPoint);
    visit.word(176 + 4 * i, values.curves[kGreenCurve][i], kGammaPoint);
    visit.word(264 + 4 * i, values.curves[kBlueCurve][i], kGammaPoint);
  }
}

void save_to_user_data(const GammaValues& values, UserDataImage& image);
/// With no file loaded into the image yet, all four curves become 0 and the selections stay.
void reload_from_user_data(GammaValues& values, const UserDataImage& image);

/// `current` with the four curves of the reply; nothing when the reply ends before the last point.
std::optional<GammaValues> decode_gamma_reply(std::string_view reply, GammaValues current);
std::string encode_gamma_reply(const GammaValues& values);

/// "Apply": the selected curves, one flush per point. The front curve has no register here.
Traffic gamma_apply(const GammaValues& values);
/// A write of 0 to it asks for the reply of "Load <- ISP".
inline constexpr std::uint8_t kGammaLoadTrigger = 0x07;
/// "File/Flash Save".
Traffic gamma_full_save(const GammaValues& values);

}  // namespace qv5123
