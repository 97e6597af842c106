#include "simulator/camera.h"

#include <algorithm>
#include <cmath>

namespace qv5123 {
namespace {

/// Counts of white in green light alone, with the amplifier at 1.
constexpr double kSensitivity = 150;
constexpr double kDistanceUnit = 2048;

/// Mixes all bits of `value` (the finalizer of splitmix64).
std::uint64_t scrambled(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15u;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
  return value ^ (value >> 31);
}

/// A number of mean 0 and variance 1 that is nearly normally distributed: the sum of four even ones.
double bell_shaped(std::uint64_t bits) {
  constexpr double kUnit = 65536;
  double sum = 0;
  for (int part = 0; part < 4; ++part) sum += static_cast<double>(bits >> (16 * part) & 0xFFFF) / kUnit;
  return (sum - 2) * std::sqrt(3.0);
}

}  // namespace

PicturePoint Camera::lens_centre() const {
  return {scene_.width / 2 + truth_.decentring.x, scene_.height / 2 + truth_.decentring.y};
}

Light Camera::signal(int x, int y, double gain) const {
  const Light light = scene_light(scene_, x, y);
  const PicturePoint centre = lens_centre();
  const double dx = (x - centre.x) / kDistanceUnit;
  const double dy = (y - centre.y) / kDistanceUnit;
  const double d2 = dx * dx + dy * dy;
  Light signal{};
  for (std::size_t c = 0; c < 3; ++c) {
    for (std::size_t j = 0; j < 3; ++j) signal[c] += truth_.crosstalk[c][j] * truth_.illuminant[j] * light[j];
    signal[c] *= kSensitivity * gain / (1 + truth_.fall_off_a[c] * d2 + truth_.fall_off_b[c] * d2 * d2);
  }
  return signal;
}

Light Camera::raw(int x, int y, double gain) const {
  Light raw = signal(x, y, gain);
  for (std::size_t c = 0; c < 3; ++c) raw[c] = std::clamp(raw[c] + noise(x, y, c, raw[c]), 0.0, kFullScale);
  return raw;
}

double Camera::noise(int x, int y, std::size_t colour, double level) const {
  const double variance = truth_.read_noise * truth_.read_noise + truth_.shot_noise * std::max(level, 0.0);
  if (variance <= 0) return 0;
  const auto place =
      static_cast<std::uint64_t>(static_cast<std::uint32_t>(y)) << 32 | static_cast<std::uint32_t>(x);
  const std::uint64_t bits = scrambled(scrambled(truth_.seed * 3 + colour) ^ place);
  return bell_shaped(bits) * std::sqrt(variance);
}

}  // namespace qv5123
