#pragma once

#include <array>
#include <cstddef>

#include "tuning/color_difference.h"

/// The 24-patch colour chart: four rows of six, numbered along the rows.
namespace qv5123 {

inline constexpr std::size_t kPatches = 24;
inline constexpr int kPatchesInRow = 6;

/// The captions of the patches, as the page has always had them.
inline constexpr std::array<const char*, kPatches> kPatchCaptions = {
    "Dark skin(R,G,B)",    "Light skin(R,G,B)",   "Blue sky(R,G,B)",     "Foliage(R,G,B)",
    "Blue flower(R,G,B)",  "Bluish green(R,G,B)", "Orange(R,G,B)",       "Purplish blue(R,G,B)",
    "Moderate red(R,G,B)", "Purple(R,G,B)",       "Yellow green(R,G,B)", "Orange yellow(R,G,B)",
    "Blue(R,G,B)",         "Green(R,G,B)",        "Red(R,G,B)",          "Yellow(R,G,B)",
    "Magenta(R,G,B)",      "Cyan(R,G,B)",         "White(R,G,B)",        "Neutral 8(R,G,B)",
    "Neutra 6.5(R,G,B)",   "Neutra 5(R,G,B)",     "Neutral 3.5(R,G,B)",  "Black(R,G,B)"};

/// What each patch should look like, linear in light, white = 1.
inline constexpr std::array<LinearRgb, kPatches> kPatchReferences = {{
    {0.189249806, 0.089737555, 0.062013575},
    {0.62160255, 0.319886368, 0.238705527},
    {0.11347569, 0.214093303, 0.362295344},
    {0.111155276, 0.162777598, 0.056716701},
    {0.242479174, 0.235895824, 0.475123499},
    {0.118420563, 0.562234774, 0.451099505},
    {0.817318356, 0.219243675, 0.030694129},
    {0.063083585, 0.114929069, 0.440524137},
    {0.619811339, 0.092034937, 0.130851613},
    {0.121418207, 0.046228244, 0.156248676},
    {0.37794484, 0.556060044, 0.054041229},
    {0.869034299, 0.392823535, 0.022425994},
    {0.018782264, 0.054875771, 0.319446046},
    {0.061324774, 0.328158802, 0.075111123},
    {0.498498946, 0.033118998, 0.044665047},
    {0.937729165, 0.620351335, 0.007478194},
    {0.583465165, 0.096794889, 0.336169492},
    {-0.040739409, 0.269972301, 0.437734686},
    {0.99844721, 1, 0.976963213},
    {0.634352222, 0.647042099, 0.648585359},
    {0.388287281, 0.399423782, 0.401811042},
    {0.207949337, 0.209703162, 0.211080081},
    {0.093315448, 0.097142918, 0.101204476},
    {0.033171315, 0.034032973, 0.035800748},
}};

/// The four neutral greys that the white balance is taken from, the first and the last of them.
inline constexpr std::size_t kFirstGrey = 19;
inline constexpr std::size_t kLastGrey = 22;

}  // namespace qv5123
