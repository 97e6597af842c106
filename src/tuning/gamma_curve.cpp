#include "tuning/gamma_curve.h"

#include <algorithm>
#include <cmath>

#include "base/saturate.h"

namespace qv5123 {
namespace {

/// How much lower each point lies than the power law, before scaling by the normaliser.
constexpr GammaCurve kDarkEnd = {0,   -109, -129, -122, -117, -100, -86, -71, -59, -42, -28,
                                 -18, -11,  -5,   0,    0,    0,    0,   0,   0,   0,   0};

/// Gamma of the ITU-R BT.709 transfer characteristic; the dark end was measured at it.
constexpr double kReferenceGamma = 0.45;

int power_law(int position, double gamma) {
  return saturate_to_int(std::pow(position * (1.0 / 1024), gamma) * 1024);
}

float normaliser(double gamma, double front_level) {
  const double level = (front_level + front_level) * 0.0625;
  if (gamma < kReferenceGamma) {
    return static_cast<float>(gamma * gamma / std::pow(kReferenceGamma, level));
  }
  return static_cast<float>(gamma * gamma * gamma / std::pow(kReferenceGamma, 1 + level));
}

int itu_point(std::size_t i, double gamma) {
  const int value = power_law(kGammaPositions[i], gamma);
  if (i >= 3) return value;
  return std::min(value, saturate_to_int(4.5 * kGammaPositions[i]));
}

int corrected_point(std::size_t i, double gamma, float scale) {
  const long long base = power_law(kGammaPositions[i], gamma);
  const long long value = base + saturate_to_int(static_cast<float>(kDarkEnd[i]) / scale);
  return static_cast<int>(std::clamp<long long>(value, 0, kGammaComputedMaximum));
}

}  // namespace

GammaCurve end_gamma_curve(double gamma, bool itu_709, double front_level) {
  const float scale = normaliser(gamma, front_level);
  GammaCurve curve{};
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    const int value = itu_709 ? itu_point(i, gamma) : corrected_point(i, gamma, scale);
    curve[i] = std::min(value, kGammaComputedMaximum);
  }
  return curve;
}

GammaCurve front_gamma_curve(double gamma) {
  GammaCurve curve{};
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    curve[i] = std::min(power_law(kGammaPositions[i], gamma), kGammaComputedMaximum);
  }
  return curve;
}

GammaResult set_end_gamma(GammaValues& values, double front_level) {
  if (values.front_gamma_value == 0) return GammaResult::invalid;
  const GammaCurve curve = end_gamma_curve(values.gamma_value, values.itu_709, front_level);
  for (GammaCurveId id : selected_curves(values.channel)) values.curve(id) = curve;
  return GammaResult::ok;
}

GammaResult set_front_gamma(GammaValues& values) {
  if (values.gamma_value == 0) return GammaResult::invalid;
  values.curve(GammaCurveId::front) = front_gamma_curve(values.front_gamma_value);
  return GammaResult::ok;
}

}  // namespace qv5123
