#pragma once

#include "tuning/gamma.h"

namespace qv5123 {

/// Computed points stop here, a little below the scale's end.
inline constexpr int kGammaComputedMaximum = 1016;
/// The front gamma level where the ISP tune page has not set one.
inline constexpr double kDefaultFrontGammaLevel = 16.0;

enum class GammaResult {
  ok,
  invalid,  ///< a value that must not be 0 is 0; nothing was changed
};

/// An end curve by the power law of exponent `gamma`, its dark end lowered to match the front gamma of level
/// `front_level`, or following ITU-R BT.709 with its linear start. Every input gives points 0..1016.
GammaCurve end_gamma_curve(double gamma, bool itu_709, double front_level);

/// The power law of exponent `gamma` alone, points 0..1016.
GammaCurve front_gamma_curve(double gamma);

/// "Set" beside "Gamma Value": computes the selected curves. It is the front gamma value that must not be 0.
GammaResult set_end_gamma(GammaValues& values, double front_level);

/// "Set" beside the front gamma value: computes the front curve. It is the gamma value that must not be 0.
GammaResult set_front_gamma(GammaValues& values);

}  // namespace qv5123
