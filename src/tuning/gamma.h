#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/desk_texts.h"
#include "tuning/field_visitors.h"
#include "tuning/picker.h"

namespace qv5123 {

inline constexpr std::size_t kGammaPoints = 22;
/// Largest value of a curve point; the smallest is 0.
inline constexpr int kGammaMaximum = 1023;

/// The values of a curve at the sample positions.
using GammaCurve = std::array<int, kGammaPoints>;

/// Position of each point on the input scale 0..1023.
inline constexpr GammaCurve kGammaPositions = {0,   8,   16,  24,  32,  48,  64,  80,  96,  128, 160,
                                               192, 224, 256, 320, 384, 448, 512, 640, 768, 896, 1023};

enum class GammaCurveId { red, green, blue, front };
inline constexpr std::size_t kGammaCurves = 4;
inline constexpr std::array<const char*, kGammaCurves> kGammaCurveNames{"R", "G", "B", "Front"};
/// In the order in which the page shows them.
inline constexpr std::array kEndGammaCurves{GammaCurveId::red, GammaCurveId::green, GammaCurveId::blue};

/// The radio buttons in the order of their values; the values are what the chip and the files keep.
enum class GammaChannel { green, blue, red, rgb, front };
inline constexpr std::array<const char*, 5> kGammaChannels{"G", "B", "R", "RGB", "Front Gamma"};

/// What the gamma page shows and edits.
struct GammaValues {
  std::array<GammaCurve, kGammaCurves> curves{};  ///< by GammaCurveId, points 0..1023
  GammaChannel channel = GammaChannel::rgb;       ///< what Set and Apply act on
  /// The selection last loaded from the user data: the one that a full save keeps on the chip.
  GammaChannel loaded_channel = GammaChannel::rgb;
  double gamma_value = 0.45;
  double front_gamma_value = 1.0;
  bool itu_709 = false;  ///< "Standard ITU.709 Gamma"

  constexpr GammaCurve& curve(GammaCurveId id) { return curves[static_cast<std::size_t>(id)]; }
  constexpr const GammaCurve& curve(GammaCurveId id) const { return curves[static_cast<std::size_t>(id)]; }
  friend bool operator==(const GammaValues&, const GammaValues&) = default;
};

/// The curves that a selection means, in the order in which they are computed and sent.
std::vector<GammaCurveId> selected_curves(GammaChannel channel);

/// The selection after a click on the radio button `clicked`: the front radio falls back to all three.
constexpr GammaChannel channel_after_click(GammaChannel clicked) {
  return clicked == GammaChannel::front ? GammaChannel::rgb : clicked;
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
    [](int stored) {
      return stored > static_cast<int>(GammaChannel::front) ? static_cast<int>(GammaChannel::rgb) : stored;
    }};

/// Takes the points of the red curve, each as high byte and low byte; green and blue follow.
inline constexpr std::uint8_t kGammaCurveRegister = 0x03;
inline constexpr std::uint8_t kGammaChannelRegister = 0x06;

/// The page: the selection in entry 44 and behind it 22 words for each of the three end curves. The front
/// curve in entries 0..43 belongs to the chip: the page shows it and never stores it. The reply is 352
/// characters, four to a point, the front curve first: "...0ffc" is a front point of 1023, "...03f8" an end
/// point of 1016. What sends a point is its curve's number: "Apply" sends the curves that are selected.
struct GammaPage {
  using Values = GammaValues;
  static constexpr DeskTexts kTexts{"gamma", 0x07, "ISP Load Fail...", "Load Isp ok..", "Load File ok.."};

  template <class V, class Visitor>
  static constexpr void fields(V& values, Visitor& visit) {
    visit.byte({"channel"}, values.channel,
               {.caption = {"Channel"},
                .entry = 44,
                .range = {0, static_cast<int>(kGammaChannels.size()) - 1},
                .format = FieldFormat::list,
                .items = kGammaChannels,
                .address = kGammaChannelRegister,
                .saved = true,
                .saved_as_loaded = true,
                .as = &kGammaChannel});
    for (const GammaCurveId id : kEndGammaCurves) end_curve(id, values.curve(id), visit);
    front_curve(values.curve(GammaCurveId::front), visit);
  }

  /// With no file loaded into the image yet, all four curves become 0 and the selections stay.
  static void load(Values& values, const UserDataImage& image);
  static void keep_place(Values& values, const Values& now) {
    values.gamma_value = now.gamma_value;
    values.front_gamma_value = now.front_gamma_value;
    values.itu_709 = now.itu_709;
  }

 private:
  template <class Curve, class Visitor>
  static constexpr void end_curve(GammaCurveId id, Curve& curve, Visitor& visit) {
    const int place = static_cast<int>(id);
    for (int i = 0; i < static_cast<int>(kGammaPoints); ++i)
      visit.word(Words(kColourKeys[place]).at(i), curve[i],
                 {.caption = caption(id, i),
                  .entry = 45 + 44 * place + 2 * i,
                  .reply = 88 + 88 * place + 4 * i,
                  .range = {0, kGammaMaximum},
                  .address = kGammaCurveRegister + place,
                  .sent_by = place,
                  .saved = true,
                  .as = &kGammaPoint});
  }
  template <class Curve, class Visitor>
  static constexpr void front_curve(Curve& curve, Visitor& visit) {
    for (int i = 0; i < static_cast<int>(kGammaPoints); ++i)
      visit.word(Words("front").at(i), curve[i],
                 {.caption = caption(GammaCurveId::front, i),
                  .entry = 2 * i,
                  .entry_use = EntryUse::only_loaded,
                  .reply = 4 * i,
                  .range = {0, kGammaMaximum},
                  .as = &kFrontGammaPoint});
  }
  /// "Point 22 Front".
  static constexpr Words caption(GammaCurveId id, int point) {
    return Words("Point", kGammaCurveNames[static_cast<std::size_t>(id)]).numbered(point + 1);
  }
};
static_assert(fields_hold<GammaPage>());

/// One end curve, one flush per point. The front curve has no register here.
Traffic gamma_curve_traffic(const GammaValues& values, GammaCurveId id);
/// "Apply": the selected curves.
Traffic gamma_apply(const GammaValues& values);
/// "File/Flash Save".
Traffic gamma_full_save(const GammaValues& values);

}  // namespace qv5123
