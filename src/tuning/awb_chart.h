#pragma once

#include <array>
#include <optional>
#include <vector>

#include "tuning/awb.h"

/// Geometry of the white-detection chart: Cb/Y to the right, Cr/Y up, 200 pixels per unit, origin in the
/// middle, y growing downwards as on the screen.
namespace qv5123 {

inline constexpr double kAwbChartScale = 200;
/// The frame runs from -kAwbChartHalf to kAwbChartHalf both ways.
inline constexpr double kAwbChartHalf = 200;

struct ChartPoint {
  double x = 0;
  double y = 0;
  friend bool operator==(const ChartPoint&, const ChartPoint&) = default;
};

struct ChartText {
  const char* text;
  ChartPoint at;
};
inline constexpr std::array<ChartText, 3> kAwbChartTexts{
    {{"0", {2, 2}}, {"Cr/Y", {2, -198}}, {"Cb/Y", {160, 2}}}};

/// A colour in the chart's plane; `x` is Cb/Y and `y` Cr/Y. Nothing for black, which has no place in it.
std::optional<ChartPoint> chroma_over_luma(const PatchColour& colour);

enum class ChartPen { green, blue, red };

/// A white-detection line in pixels, its letter and where that is written.
struct ChartLine {
  char name;
  ChartPen pen;
  ChartPoint from;
  ChartPoint to;
  ChartPoint letter;
};
/// The lines A to F.
std::array<ChartLine, 6> awb_chart_lines(const AwbValues& values);

/// A measured patch in pixels: a filled square of `side` around `centre`.
struct ChartPatch {
  std::size_t row;
  ChartPoint centre;
  double side;
  PatchColour colour;
};
/// The patches that have a place, in row order.
std::vector<ChartPatch> awb_chart_patches(const AwbValues& values);

/// Where a line's letter of `size` pixels is written, by its upper left corner: at `at`, or below, above or
/// beside it where one of the `patches` lies there.
ChartPoint clear_of_patches(ChartPoint at, double size, const std::vector<ChartPoint>& patches);

}  // namespace qv5123
