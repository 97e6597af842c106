#include "simulator/chart_colours.h"

namespace qv5123 {
namespace {

/// L*, a*, b* against D50.
constexpr double kLab[kChartPatches][3] = {
    {37.54, 14.37, 14.92},  {64.66, 19.27, 17.50},   {49.32, -3.82, -22.54}, {43.46, -12.74, 22.72},
    {54.94, 9.61, -24.79},  {70.48, -32.26, -0.37},  {62.73, 35.83, 56.50},  {39.43, 10.75, -45.17},
    {50.57, 48.64, 16.67},  {30.10, 22.54, -20.87},  {71.77, -24.13, 58.19}, {71.51, 18.24, 67.37},
    {28.37, 15.42, -49.80}, {54.38, -39.72, 32.27},  {42.43, 51.05, 28.62},  {81.80, 2.67, 80.41},
    {50.63, 51.28, -14.12}, {49.57, -29.71, -28.32}, {95.19, -1.03, 2.93},   {81.29, -0.57, 0.44},
    {66.89, -0.75, -0.06},  {50.76, -0.13, 0.14},    {35.63, -0.46, -0.48},  {20.64, 0.07, -0.46}};
constexpr std::size_t kWhite = 18;

constexpr double kD50[3] = {0.96422, 1, 0.82521};
/// Bradford: XYZ seen under D50 to XYZ seen under D65.
constexpr double kToD65[3][3] = {{0.9555766, -0.0230393, 0.0631636},
                                 {-0.0282895, 1.0099416, 0.0210077},
                                 {0.0122982, -0.0204830, 1.3299098}};
/// XYZ to linear sRGB (IEC 61966-2-1).
constexpr double kToRgb[3][3] = {
    {3.2406, -1.5372, -0.4986}, {-0.9689, 1.8758, 0.0415}, {0.0557, -0.2040, 1.0570}};

Light through(const double (&matrix)[3][3], const Light& colour) {
  Light result{};
  for (std::size_t r = 0; r < 3; ++r)
    for (std::size_t j = 0; j < 3; ++j) result[r] += matrix[r][j] * colour[j];
  return result;
}

/// The inverse of the L*a*b* curve.
double share_of_white(double f) {
  constexpr double kDelta = 6.0 / 29;
  return f > kDelta ? f * f * f : 3 * kDelta * kDelta * (f - 4.0 / 29);
}

Light rgb_of(const double (&lab)[3]) {
  const double y = (lab[0] + 16) / 116;
  const Light xyz = {kD50[0] * share_of_white(y + lab[1] / 500), kD50[1] * share_of_white(y),
                     kD50[2] * share_of_white(y - lab[2] / 200)};
  return through(kToRgb, through(kToD65, xyz));
}

std::array<Light, kChartPatches> computed() {
  std::array<Light, kChartPatches> colours{};
  const double white = rgb_of(kLab[kWhite])[1];
  for (std::size_t i = 0; i < kChartPatches; ++i) {
    colours[i] = rgb_of(kLab[i]);
    for (double& part : colours[i]) part /= white;
  }
  return colours;
}

}  // namespace

const std::array<Light, kChartPatches>& chart_colours() {
  static const std::array<Light, kChartPatches> colours = computed();
  return colours;
}

}  // namespace qv5123
