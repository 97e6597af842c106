#include "tuning/gamma_chart.h"

#include <algorithm>

namespace qv5123 {
namespace {

long long squared_distance(ChartPixel a, ChartPixel b) {
  const long long dx = static_cast<long long>(a.x) - b.x;
  const long long dy = static_cast<long long>(a.y) - b.y;
  // Beyond any screen the distance no longer matters, and its square must not overflow.
  if (dx > 100000 || dx < -100000 || dy > 100000 || dy < -100000) return 20'000'000'000;
  return dx * dx + dy * dy;
}

ChartPixel point_pixel(const GammaValues& values, GammaCurveId id, std::size_t i) {
  return gamma_pixel(kGammaPositions[i], values.curve(id)[i]);
}

std::vector<GammaCurveId> curves_on(const GammaValues& values, ChartPixel pixel, std::size_t i) {
  std::vector<GammaCurveId> ids = selected_curves(values.channel);
  std::erase_if(ids, [&](GammaCurveId id) { return point_pixel(values, id, i) != pixel; });
  return ids;
}

}  // namespace

int gamma_value_at(int y) {
  const long long value = (static_cast<long long>(kGammaPlot.bottom) - y) * 2;
  return static_cast<int>(std::clamp<long long>(value, 0, kGammaMaximum));
}

std::vector<ChartPixel> gamma_polyline(const GammaCurve& curve) {
  std::vector<ChartPixel> line{gamma_pixel(0, 0)};
  for (std::size_t i = 0; i < kGammaPoints; ++i) line.push_back(gamma_pixel(kGammaPositions[i], curve[i]));
  return line;
}

std::optional<GammaHit> nearest_gamma_point(const GammaValues& values, ChartPixel at) {
  long long nearest = kGammaGrabRadius * kGammaGrabRadius + 1;
  std::optional<GammaHit> hit;
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    for (GammaCurveId id : selected_curves(values.channel)) {
      const ChartPixel pixel = point_pixel(values, id, i);
      const long long distance = squared_distance(pixel, at);
      if (distance >= nearest) continue;
      nearest = distance;
      hit = GammaHit{i, curves_on(values, pixel, i)};
    }
  }
  return hit;
}

double gamma_slope(const GammaCurve& curve, std::size_t point) {
  const std::size_t before = point > 0 ? point - 1 : point;
  const std::size_t after = std::min(point + 1, kGammaPoints - 1);
  return static_cast<double>(curve[after] - curve[before]) /
         (kGammaPositions[after] - kGammaPositions[before]);
}

void move_gamma_point(GammaValues& values, const GammaHit& hit, int value) {
  if (hit.point >= kGammaPoints) return;
  for (GammaCurveId id : hit.curves) values.curve(id)[hit.point] = std::clamp(value, 0, kGammaMaximum);
}

}  // namespace qv5123
