#pragma once

#include <array>
#include <cstdint>

namespace qv5123 {

/// Red, green and blue, linear in light, 0..1 from black to white; sRGB primaries (IEC 61966-2-1), D65
/// white. Values outside 0..1 stand for colours outside the gamut.
using LinearRgb = std::array<double, 3>;

/// CIE 1976 L*a*b*.
struct Lab {
  double l = 0;
  double a = 0;
  double b = 0;
};

/// L*a*b* against D65 white.
Lab lab_of(const LinearRgb& colour);

/// 0xRRGGBB to paint the colour with: sRGB transfer characteristic, clipped to the gamut.
std::uint32_t display_colour(const LinearRgb& colour);

/// What the colour difference below is made of: its root of the sum of squares.
std::array<double, 3> ciede2000_parts(const Lab& one, const Lab& other);

/// The CIE's 2000 colour difference with all weights 1; 1 is about what an eye can just tell apart.
double ciede2000(const Lab& one, const Lab& other);

}  // namespace qv5123
