#include "tuning/awb_chart.h"

#include <algorithm>

namespace qv5123 {
namespace {

constexpr double kFraction = 256;
constexpr double kLineLeft = -0.8;
constexpr double kLineRight = 0.1;

ChartPoint to_pixels(double cb, double cr) {
  return {kAwbChartScale * cb, -kAwbChartScale * cr};
}

ChartLine sloped_line(const AwbValues& values, const AwbRow& row, ChartPen pen, double letter_x) {
  const double slope = values.words[row.first_word] / kFraction;
  const double intercept = values.words[row.first_word + 1] / kFraction;
  const ChartPoint left = to_pixels(kLineLeft, slope * kLineLeft + intercept);
  return {*row.name, pen, left, to_pixels(kLineRight, slope * kLineRight + intercept), {letter_x, left.y}};
}

ChartLine vertical_line(int word) {
  const double x = kAwbChartScale * word / kFraction;
  return {'E', ChartPen::red, {x, -60}, {x, 200}, {x, -58}};
}

/// Whether a letter, of which `at` is the upper left corner, and the square of a patch touch.
bool covers(ChartPoint patch, ChartPoint at, double size) {
  constexpr double kReach = 5;  // from a patch's middle, with its outline
  return patch.x > at.x - kReach && patch.x < at.x + size + kReach && patch.y > at.y - kReach &&
         patch.y < at.y + size + kReach;
}

ChartLine horizontal_line(int word) {
  const double y = -kAwbChartScale * word / kFraction;
  return {'F', ChartPen::red, {-200, y}, {20, y}, {-200, y}};
}

}  // namespace

std::optional<ChartPoint> chroma_over_luma(const PatchColour& colour) {
  const double r = std::clamp(colour.r, 0, 255);
  const double g = std::clamp(colour.g, 0, 255);
  const double b = std::clamp(colour.b, 0, 255);
  // 76, 148 and 32 of 256: the chip's own weights, not those of the broadcast standards.
  const double luma = 0.296875 * r + 0.578125 * g + 0.125 * b;
  if (luma <= 0) return std::nullopt;
  const double cr = 0.5 * r - 0.42188 * g - 0.07813 * b;
  const double cb = -0.16797 * r - 0.33203 * g + 0.5 * b;
  return ChartPoint{cb / luma, cr / luma};
}

std::array<ChartLine, 6> awb_chart_lines(const AwbValues& values) {
  return {sloped_line(values, kAwbRows[0], ChartPen::green, -164),
          sloped_line(values, kAwbRows[1], ChartPen::green, -164),
          sloped_line(values, kAwbRows[2], ChartPen::blue, -165),
          sloped_line(values, kAwbRows[3], ChartPen::blue, -165),
          vertical_line(values.words[8]),
          horizontal_line(values.words[9])};
}

std::vector<ChartPatch> awb_chart_patches(const AwbValues& values) {
  std::vector<ChartPatch> patches;
  for (std::size_t row = 0; row < kAwbPatchCount; ++row) {
    const auto place = chroma_over_luma(values.patches[row]);
    if (!place) continue;
    const AwbPatch& patch = kAwbPatches[row];
    patches.push_back({row, to_pixels(place->x, place->y), patch.highlighted ? 6.0 : 4.0, patch.reference});
  }
  return patches;
}

ChartPoint clear_of_patches(ChartPoint at, double size, const std::vector<ChartPoint>& patches) {
  const double step = size + 2;
  const std::array<ChartPoint, 5> ways{{{0, 0}, {0, step}, {0, -step}, {step, 0}, {-step, 0}}};
  for (const ChartPoint way : ways) {
    const ChartPoint moved{at.x + way.x, at.y + way.y};
    if (std::ranges::none_of(patches, [&](ChartPoint patch) { return covers(patch, moved, size); }))
      return moved;
  }
  return at;
}

}  // namespace qv5123
