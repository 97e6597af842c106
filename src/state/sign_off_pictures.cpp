// The pictures of a sign-off report.
#include <algorithm>
#include <array>
#include <cmath>

#include "base/text.h"
#include "state/sign_off.h"
#include "tuning/awb_chart.h"

namespace qv5123 {
namespace {

constexpr std::uint32_t kBlack = 0x000000, kGrey = 0xA0A0A0, kPale = 0xE4E4E4, kWhite = 0xFFFFFF;
constexpr std::array<std::uint32_t, 3> kColors{0xC02020, 0x208020, 0x2040C0};
constexpr double kMargin = 34;

/// A field of axes: what lies between `left`..`right` and `bottom`..`top` fills it.
struct Axes {
  double left, right, bottom, top;
  double width = 460, height = 200;
  Drawing::Point at(double x, double y) const {
    return {kMargin + (x - left) / (right - left) * width, 8 + (top - y) / (top - bottom) * height};
  }
};

Drawing framed(const Axes& axes, std::string title, int digits) {
  Drawing drawing;
  drawing.title = std::move(title);
  drawing.width = axes.width + kMargin + 8;
  drawing.height = axes.height + 28;
  drawing.box(kMargin, 8, axes.width, axes.height, kGrey, kWhite);
  drawing.label(2, 16, fixed(axes.top, digits), kBlack);
  drawing.label(2, 8 + axes.height, fixed(axes.bottom, digits), kBlack);
  drawing.label(kMargin, axes.height + 22, fixed(axes.left, digits), kBlack);
  drawing.label(kMargin + axes.width - 28, axes.height + 22, fixed(axes.right, digits), kBlack);
  return drawing;
}

std::uint32_t paint(const LinearRgb& color) {
  return display_colour(color) & 0xFFFFFF;
}

/// Each patch as it should be, beside it as it was measured and as the matrix makes it.
Drawing patches_drawing(const PatchReport& report) {
  constexpr double kWide = 76, kHigh = 48, kGap = 4;
  Drawing drawing;
  drawing.title = "Patches: reference above, measured below on the left, corrected on the right";
  drawing.width = kPatchesInRow * (kWide + kGap);
  drawing.height = 4 * (kHigh + 14 + kGap);
  for (std::size_t i = 0; i < kPatches; ++i) {
    const std::size_t row = i / kPatchesInRow;
    const double x = static_cast<double>(i % kPatchesInRow) * (kWide + kGap);
    const double y = static_cast<double>(row) * (kHigh + 14 + kGap);
    drawing.box(x, y, kWide, kHigh / 2, {}, paint(kPatchReferences[i]));
    const auto& match = report.patches[i];
    if (match) {
      drawing.box(x, y + kHigh / 2, kWide / 2, kHigh / 2, {}, paint(match->measured));
      drawing.box(x + kWide / 2, y + kHigh / 2, kWide / 2, kHigh / 2, {}, paint(match->corrected));
      drawing.label(x + 2, y + kHigh + 11, fixed(match->before, 1) + " \u2192 " + fixed(match->after, 1));
    } else {
      drawing.label(x + 2, y + kHigh + 11, "not measured");
    }
    drawing.box(x, y, kWide, kHigh, kGrey, {});
  }
  return drawing;
}

/// Levels along the line, thin as measured and thick as the chip corrects them.
Drawing lens_drawing(const SignOff& report) {
  const LensCalibration& lens = report.lens;
  const Axes axes{0, static_cast<double>(lens.width), 0, 300};
  Drawing drawing = framed(
      axes, "Levels along the line: thin as measured, thick as corrected" + chip_words(report.lens_on_chip),
      0);
  std::vector<LensSample> samples = lens.samples;
  std::ranges::sort(samples, {}, &LensSample::x);
  for (std::size_t c = 0; c < 3; ++c) {
    std::vector<Drawing::Point> measured, corrected;
    for (const LensSample& sample : samples) {
      const double level = sample.rgb[c];
      const double gain = lens_gain(report.parameter1[c], report.parameter2[c], sample.x, lens.centre.x);
      measured.push_back(axes.at(sample.x, std::min(level, axes.top)));
      corrected.push_back(axes.at(sample.x, std::clamp(level * gain, 0.0, axes.top)));
    }
    drawing.line(std::move(measured), kColors[c], 0.7);
    drawing.line(std::move(corrected), kColors[c], 1.8);
  }
  return drawing;
}

Drawing field_drawing(const LensField& field) {
  // Three numbers of three digits with a blank between, and as wide as a page in all.
  constexpr double kWide = 71, kHigh = 26, kNumber = 24;
  Drawing drawing;
  drawing.title = "The whole picture at 9 x 5 places: red, green and blue, percent of the brightest";
  drawing.width = kFieldColumns * kWide + 2;
  drawing.height = kFieldRows * kHigh + 2;
  PerColour highest{1, 1, 1};
  for (const PerColour& place : field)
    for (std::size_t c = 0; c < 3; ++c) highest[c] = std::max(highest[c], place[c]);
  for (std::size_t i = 0; i < field.size(); ++i) {
    const std::size_t row = i / kFieldColumns;
    const double x = static_cast<double>(i % kFieldColumns) * kWide + 1;
    const double y = static_cast<double>(row) * kHigh + 1;
    const int percent = 100 * field[i][1] / highest[1];
    const auto grey = static_cast<std::uint32_t>(std::clamp(255 - 3 * (100 - percent), 90, 255));
    drawing.box(x, y, kWide, kHigh, kGrey, grey << 16 | grey << 8 | grey);
    for (std::size_t c = 0; c < 3; ++c)
      drawing.label(x + 1 + kNumber * static_cast<double>(c), y + 17,
                    std::to_string(100 * field[i][c] / highest[c]), kColors[c]);
  }
  return drawing;
}

Drawing gamma_drawing(const GammaValues& gamma) {
  const Axes axes{0, kGammaMaximum, 0, kGammaMaximum};
  Drawing drawing = framed(axes, "Gamma curves: red, green, blue, and the front curve in gray", 0);
  for (std::size_t id = 0; id < kGammaCurves; ++id) {
    std::vector<Drawing::Point> points;
    for (std::size_t i = 0; i < kGammaPoints; ++i)
      points.push_back(axes.at(kGammaPositions[i], gamma.curves[id][i]));
    drawing.line(std::move(points), id < 3 ? kColors[id] : kGrey, id < 3 ? 1.4 : 2.2);
  }
  return drawing;
}

struct Letter {
  std::string text;
  Drawing::Point at;  ///< where it begins
};

/// Cb/Y to the right and Cr/Y up, as the page shows them.
Drawing white_drawing(const AwbValues& awb) {
  const Axes axes{-1, 1, -1, 1, 300, 300};
  Drawing drawing = framed(axes, "White lines A to F and the patches, Cb/Y across and Cr/Y up", 1);
  drawing.line({axes.at(-1, 0), axes.at(1, 0)}, kPale);
  drawing.line({axes.at(0, -1), axes.at(0, 1)}, kPale);
  const auto word = [&awb](std::size_t i) { return std::clamp(awb.words[i] / 256.0, -8.0, 8.0); };
  const auto within = [](double y) { return std::clamp(y, -1.0, 1.0); };
  std::vector<Letter> letters;
  for (std::size_t line = 0; line < 4; ++line) {
    const double slope = word(2 * line), intercept = word(2 * line + 1);
    std::vector<Drawing::Point> points;
    for (double x = -0.8; x < 0.1001; x += 0.05) points.push_back(axes.at(x, within(slope * x + intercept)));
    letters.push_back(
        {awb_row(static_cast<AwbControl>(line)).name, {points.front().x - 12, points.front().y}});
    drawing.line(std::move(points), line < 2 ? kColors[1] : kColors[2], 1.5);
  }
  const double e = within(word(8)), f = within(word(9));
  drawing.line({axes.at(e, 0.3), axes.at(e, -1)}, kColors[0], 1.5);
  drawing.line({axes.at(-1, f), axes.at(0.1, f)}, kColors[0], 1.5);
  letters.push_back({"E", {axes.at(e, 0.3).x + 2, axes.at(e, 0.3).y}});
  letters.push_back({"F", {axes.at(-1, f).x + 2, axes.at(-1, f).y - 3}});
  std::vector<ChartPoint> patches;
  for (std::size_t i = 0; i < kAwbPatchCount; ++i) {
    const std::optional<ChartPoint> place = chroma_over_luma(awb.patches[i]);
    if (!place) continue;
    const Drawing::Point at = axes.at(within(place->x), within(place->y));
    const PatchColour& look = kAwbPatches[i].reference;
    drawing.box(at.x - 3, at.y - 3, 6, 6, kBlack,
                static_cast<std::uint32_t>(look.r << 16 | look.g << 8 | look.b));
    patches.push_back({at.x, at.y});
  }
  // Last, and beside the patches: a letter on one could be as dark as it is.
  constexpr double kSize = Drawing::kTextSize;
  for (const Letter& letter : letters) {
    const ChartPoint at = clear_of_patches({letter.at.x, letter.at.y - kSize}, kSize, patches);
    drawing.label(at.x, at.y + kSize, letter.text);
  }
  return drawing;
}

}  // namespace

std::vector<Drawing> pictures_of(const SignOff& report) {
  std::vector<Drawing> pictures;
  if (report.chart) pictures.push_back(patches_drawing(*report.chart));
  if (!report.lens.samples.empty()) pictures.push_back(lens_drawing(report));
  if (!report.field.empty()) pictures.push_back(field_drawing(report.field));
  if (report.gamma) pictures.push_back(gamma_drawing(*report.gamma));
  if (report.awb) pictures.push_back(white_drawing(*report.awb));
  return pictures;
}

}  // namespace qv5123
