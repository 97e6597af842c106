#pragma once

#include <optional>
#include <vector>

#include "tuning/gamma.h"

/// Geometry of the gamma chart, in pixels of the page at its natural size; the widget scales the whole.
namespace qv5123 {

struct ChartPixel {
  int x = 0;
  int y = 0;
  friend bool operator==(const ChartPixel&, const ChartPixel&) = default;
};

struct ChartBox {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

inline constexpr ChartBox kGammaFrame{25, -5, 587, 557};
inline constexpr ChartBox kGammaPlot{50, 20, 562, 532};
/// Where the sample positions are written below the plot.
inline constexpr int kGammaLabelY = 537;
/// Half the side of the box around a point that its ellipse fills.
inline constexpr int kGammaMarkRadius = 3;
/// Colour of the dotted grid lines, 0xRRGGBB.
inline constexpr unsigned kGammaGridColour = 0xAD19EC;
/// How far from a point, in pixels, a mouse press still takes hold of it.
inline constexpr int kGammaGrabRadius = 12;

/// Where a point lies: `position` and `value` are on the scales 0..1023.
constexpr ChartPixel gamma_pixel(int position, int value) {
  return {kGammaPlot.left + position / 2, kGammaPlot.bottom - value / 2};
}

/// The value at height `y`, 0..1023 for every y.
int gamma_value_at(int y);

/// The pixels of a curve's line: the plot's origin, then the points.
std::vector<ChartPixel> gamma_polyline(const GammaCurve& curve);

/// The points of one sample position that lie on one pixel; a drag moves them together.
struct GammaHit {
  std::size_t point = 0;
  std::vector<GammaCurveId> curves;
  friend bool operator==(const GammaHit&, const GammaHit&) = default;
};

/// The nearest point of the shown curves within kGammaGrabRadius of `at`, the lower position where two are
/// equally near.
std::optional<GammaHit> nearest_gamma_point(const GammaValues& values, ChartPixel at);

/// How much the curve rises at a point for each step of its input, between the points beside it.
double gamma_slope(const GammaCurve& curve, std::size_t point);

/// Puts what was hit at `value`, clamped to 0..1023.
void move_gamma_point(GammaValues& values, const GammaHit& hit, int value);

}  // namespace qv5123
