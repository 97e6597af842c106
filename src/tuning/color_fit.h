#pragma once

#include "tuning/patch_report.h"

/// The matrix that comes closest to the references as an eye sees it, beside the one of "Calculate".
namespace qv5123 {

struct ColorFitOptions {
  int memory_weight = 1;  ///< what skin and neutral patches count beside the others, see kMemoryWeight
  int noise_limit = 300;  ///< percent of its noise that a row may make of even noise, see kNoiseLimit
};
inline constexpr Range kMemoryWeight{1, 10};
inline constexpr Range kNoiseLimit{100, 400};

/// What everybody knows the look of: skin, and whatever has no colour.
constexpr bool is_memory_colour(std::size_t patch) {
  return patch < 2 || is_grey(patch);
}

/// What a row makes of noise that is the same in red, green and blue: the root of its sum of squares.
double noise_gain(const std::array<float, 3>& row);

/// The matrix with the least weighted mean of CIEDE2000 over `patches`, held to what "Calculate" finds so
/// that patches left out come closer as well: the more a count is worth, see count_worth(), the closer. Its
/// rows sum to 1 and its elements are whole codes, so that it is what the chip will compute with. No row
/// amplifies noise beyond the limit. Takes some 10 ms.
Coefficients fit_color_difference(const ExposedPatches& patches, double count,
                                  const ColorFitOptions& options);

/// The same for measured counts. Nothing when no grey has been measured.
std::optional<Coefficients> fit_color_difference(const MeasuredColours& measured,
                                                 const ColorFitOptions& options);

}  // namespace qv5123
