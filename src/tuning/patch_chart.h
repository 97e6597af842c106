#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "tuning/color_difference.h"

/// The 24-patch colour chart: four rows of six, numbered along the rows.
namespace qv5123 {

inline constexpr std::size_t kPatches = 24;
inline constexpr int kPatchesInRow = 6;

struct ReferencePatch {
  const char* caption;    ///< as the page has always had it
  LinearRgb reference{};  ///< what it should look like, linear in light, white = 1
};
inline constexpr std::array<ReferencePatch, kPatches> kChart = {{
    {"Dark skin(R,G,B)", {0.189249806, 0.089737555, 0.062013575}},
    {"Light skin(R,G,B)", {0.62160255, 0.319886368, 0.238705527}},
    {"Blue sky(R,G,B)", {0.11347569, 0.214093303, 0.362295344}},
    {"Foliage(R,G,B)", {0.111155276, 0.162777598, 0.056716701}},
    {"Blue flower(R,G,B)", {0.242479174, 0.235895824, 0.475123499}},
    {"Bluish green(R,G,B)", {0.118420563, 0.562234774, 0.451099505}},
    {"Orange(R,G,B)", {0.817318356, 0.219243675, 0.030694129}},
    {"Purplish blue(R,G,B)", {0.063083585, 0.114929069, 0.440524137}},
    {"Moderate red(R,G,B)", {0.619811339, 0.092034937, 0.130851613}},
    {"Purple(R,G,B)", {0.121418207, 0.046228244, 0.156248676}},
    {"Yellow green(R,G,B)", {0.37794484, 0.556060044, 0.054041229}},
    {"Orange yellow(R,G,B)", {0.869034299, 0.392823535, 0.022425994}},
    {"Blue(R,G,B)", {0.018782264, 0.054875771, 0.319446046}},
    {"Green(R,G,B)", {0.061324774, 0.328158802, 0.075111123}},
    {"Red(R,G,B)", {0.498498946, 0.033118998, 0.044665047}},
    {"Yellow(R,G,B)", {0.937729165, 0.620351335, 0.007478194}},
    {"Magenta(R,G,B)", {0.583465165, 0.096794889, 0.336169492}},
    {"Cyan(R,G,B)", {-0.040739409, 0.269972301, 0.437734686}},
    {"White(R,G,B)", {0.99844721, 1, 0.976963213}},
    {"Neutral 8(R,G,B)", {0.634352222, 0.647042099, 0.648585359}},
    {"Neutra 6.5(R,G,B)", {0.388287281, 0.399423782, 0.401811042}},
    {"Neutra 5(R,G,B)", {0.207949337, 0.209703162, 0.211080081}},
    {"Neutral 3.5(R,G,B)", {0.093315448, 0.097142918, 0.101204476}},
    {"Black(R,G,B)", {0.033171315, 0.034032973, 0.035800748}},
}};

namespace patch_chart {
/// One member of every patch.
template <class T>
constexpr std::array<T, kPatches> each(T ReferencePatch::*member) {
  std::array<T, kPatches> all{};
  for (std::size_t i = 0; i < kPatches; ++i) all[i] = kChart[i].*member;
  return all;
}
}  // namespace patch_chart
inline constexpr auto kPatchCaptions = patch_chart::each(&ReferencePatch::caption);
inline constexpr auto kPatchReferences = patch_chart::each(&ReferencePatch::reference);

/// The four neutral greys that the white balance is taken from, the first and the last of them.
inline constexpr std::size_t kFirstGrey = 19;
inline constexpr std::size_t kLastGrey = 22;
/// White and black are grey as well.
constexpr bool is_grey(std::size_t patch) {
  return patch >= 18;
}

/// "Dark skin": the caption without what follows the name.
inline std::string patch_name(std::size_t patch) {
  const std::string caption = kPatchCaptions[patch];
  return caption.substr(0, caption.find('('));
}

}  // namespace qv5123
