#pragma once

#include <array>
#include <cstddef>

namespace qv5123 {

/// Red, green and blue light, linear, 1 = what a white surface sends back. Colours outside the primaries'
/// gamut have a negative part.
using Light = std::array<double, 3>;

inline constexpr std::size_t kChartPatches = 24;
inline constexpr int kChartColumns = 6;
inline constexpr int kChartRows = 4;

/// What the patches of the 24-patch chart send back under even light, linear sRGB, the white patch's green 1.
///
/// The manufacturer's published CIE L*a*b* values (D50, 2 degrees, charts made before November 2014), taken
/// to D65 by the Bradford transform. They were measured apart from the table that the matrix page fits to, so
/// that a fit cannot come out better here than it would in front of a chart of paper and paint.
const std::array<Light, kChartPatches>& chart_colours();

}  // namespace qv5123
