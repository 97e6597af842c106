#include "tuning/color_difference.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/saturate.h"

namespace qv5123 {
namespace {

constexpr double kDegree = std::numbers::pi / 180;
constexpr double kTwoPi = 2 * std::numbers::pi;

/// sRGB to CIE XYZ (IEC 61966-2-1).
constexpr double kXyz[3][3] = {{0.4124, 0.3576, 0.1805}, {0.2126, 0.7152, 0.0722}, {0.0193, 0.1192, 0.9505}};

/// A row against its white, which is what the row sums to.
double relative(const double (&row)[3], const LinearRgb& c) {
  return (row[0] * c[0] + row[1] * c[1] + row[2] * c[2]) / (row[0] + row[1] + row[2]);
}

/// Cube root with the linear piece near black, which also takes values below 0.
double lab_curve(double t) {
  constexpr double kDelta = 6.0 / 29;
  return t > kDelta * kDelta * kDelta ? std::cbrt(t) : t / (3 * kDelta * kDelta) + 4.0 / 29;
}

std::uint32_t display_byte(double linear) {
  const double c = std::isnan(linear) ? 0 : std::clamp(linear, 0.0, 1.0);
  const double encoded = c <= 0.0031308 ? 12.92 * c : 1.055 * std::pow(c, 1 / 2.4) - 0.055;
  return static_cast<std::uint32_t>(saturate_to_int(encoded * 255 + 0.5));
}

double seventh_power(double x) {
  return x * x * x * x * x * x * x;
}

/// How far chroma counts as saturated, 0..1: C^7 / (C^7 + 25^7) under a root.
double saturation(double chroma) {
  const double power = seventh_power(chroma);
  return std::sqrt(power / (power + seventh_power(25)));
}

struct Polar {
  double chroma = 0;
  double hue = 0;  ///< radians, 0..2 pi; 0 without chroma
};

Polar polar(double a, double b) {
  if (a == 0 && b == 0) return {};
  const double hue = std::atan2(b, a);
  return {std::hypot(a, b), hue < 0 ? hue + kTwoPi : hue};
}

/// The shorter way from one hue to the other.
double hue_step(const Polar& one, const Polar& other) {
  if (one.chroma * other.chroma == 0) return 0;
  const double step = other.hue - one.hue;
  if (step > std::numbers::pi) return step - kTwoPi;
  return step < -std::numbers::pi ? step + kTwoPi : step;
}

double mean_hue(const Polar& one, const Polar& other) {
  const double sum = one.hue + other.hue;
  if (one.chroma * other.chroma == 0) return sum;
  if (std::abs(one.hue - other.hue) <= std::numbers::pi) return sum / 2;
  return (sum < kTwoPi ? sum + kTwoPi : sum - kTwoPi) / 2;
}

double hue_weight(double hue) {
  return 1 - 0.17 * std::cos(hue - 30 * kDegree) + 0.24 * std::cos(2 * hue) +
         0.32 * std::cos(3 * hue + 6 * kDegree) - 0.20 * std::cos(4 * hue - 63 * kDegree);
}

double lightness_weight(double l) {
  const double off = (l - 50) * (l - 50);
  return 1 + 0.015 * off / std::sqrt(20 + off);
}

/// Chroma and hue pull on each other in the blues.
double rotation(double hue, double chroma) {
  const double off = (hue / kDegree - 275) / 25;
  return -std::sin(2 * 30 * kDegree * std::exp(-off * off)) * 2 * saturation(chroma);
}

}  // namespace

Lab lab_of(const LinearRgb& colour) {
  const double x = lab_curve(relative(kXyz[0], colour));
  const double y = lab_curve(relative(kXyz[1], colour));
  const double z = lab_curve(relative(kXyz[2], colour));
  return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

std::uint32_t display_colour(const LinearRgb& colour) {
  return display_byte(colour[0]) << 16 | display_byte(colour[1]) << 8 | display_byte(colour[2]);
}

std::array<double, 3> ciede2000_parts(const Lab& one, const Lab& other) {
  const double mean_chroma = (std::hypot(one.a, one.b) + std::hypot(other.a, other.b)) / 2;
  const double stretch = 1 + 0.5 * (1 - saturation(mean_chroma));
  const Polar p1 = polar(one.a * stretch, one.b);
  const Polar p2 = polar(other.a * stretch, other.b);
  const double chroma = (p1.chroma + p2.chroma) / 2;
  const double hue = mean_hue(p1, p2);

  const double dl = (other.l - one.l) / lightness_weight((one.l + other.l) / 2);
  const double dc = (p2.chroma - p1.chroma) / (1 + 0.045 * chroma);
  const double dh = 2 * std::sqrt(p1.chroma * p2.chroma) * std::sin(hue_step(p1, p2) / 2) /
                    (1 + 0.015 * chroma * hue_weight(hue));
  // dc^2 + dh^2 + turn dc dh as a sum of two squares.
  const double turn = rotation(hue, chroma);
  return {dl, dc + turn / 2 * dh, std::sqrt(std::max(0.0, 1 - turn * turn / 4)) * dh};
}

double ciede2000(const Lab& one, const Lab& other) {
  const auto [lightness, chroma, hue] = ciede2000_parts(one, other);
  return std::sqrt(lightness * lightness + chroma * chroma + hue * hue);
}

}  // namespace qv5123
