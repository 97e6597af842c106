#include "tuning/lens_checks.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"

namespace qv5123 {
namespace {

constexpr std::array<const char*, 3> kNames{"red", "green", "blue"};
/// How far readings may be from a smooth line, as the root of the mean square share of their level.
constexpr double kLargestScatter = 0.04;
constexpr int kFieldMargin = 16;

struct Extent {
  double low = 1e9;
  double high = 0;
  void add(double level) {
    low = std::min(low, level);
    high = std::max(high, level);
  }
  double ripple() const { return low > 0 ? 100 * (high / low - 1) : 100; }
};

template <class LevelOf>
double worst_ripple(const LensCalibration& calibration, LevelOf level_of) {
  double worst = 0;
  for (std::size_t c = 0; c < 3; ++c) {
    Extent extent;
    for (const LensSample& sample : calibration.samples) extent.add(level_of(sample, c));
    worst = std::max(worst, extent.ripple());
  }
  return calibration.samples.empty() ? 0 : worst;
}

/// How far the readings are from the curve of the centre fit.
double scatter(const LensCalibration& calibration, std::size_t colour) {
  double sum = 0;
  for (const LensSample& sample : calibration.samples) {
    const double curve = calibration.centre.curves[colour].at(sample.x);
    const double off = curve > 0 ? sample.rgb[colour] / curve - 1 : 1;
    sum += off * off;
  }
  return std::sqrt(sum / static_cast<double>(std::max<std::size_t>(calibration.samples.size(), 1)));
}

std::string clipped_text(std::size_t colour, const char* shows) {
  return std::string("Readings of ") + kNames[colour] + " are clipped, over 250 counts: less light shows " +
         shows + ".";
}

void warn_of_readings(const LensCalibration& calibration, std::size_t colour,
                      std::vector<std::string>& warnings) {
  Extent extent;
  for (const LensSample& sample : calibration.samples) extent.add(sample.rgb[colour]);
  const std::string name = kNames[colour];
  if (extent.low == extent.high) {
    warnings.push_back("All readings of " + name + " are " + fixed(extent.low, 0) +
                       ": is the picker on, and is there a lens?");
  }
  if (extent.high >= kClippedCounts) warnings.push_back(clipped_text(colour, "the fall-off"));
  if (scatter(calibration, colour) > kLargestScatter) {
    warnings.push_back("The readings of " + name + " lie " + fixed(100 * scatter(calibration, colour), 0) +
                       " % off a smooth line: is the scene even?");
  }
}

void warn_of_limits(const LensCalibration& calibration, std::size_t colour,
                    std::vector<std::string>& warnings) {
  const std::string of = std::string(" of ") + kNames[colour];
  const int first = calibration.fit.parameter1[colour];
  if (first == 0 && calibration.fit.a[colour] < 0)
    warnings.push_back("Parameter-1" + of + " was fitted below 0: the picture is darkest in its middle.");
  if (first == kLensParameterMaximum) warnings.push_back("Parameter-1" + of + " is at its limit, 4095.");
  if (calibration.fit.parameter2[colour] == kLensParameterMaximum)
    warnings.push_back("Parameter-2" + of + " is at its limit, 4095.");
}

}  // namespace

double lens_line_ripple(const LensCalibration& calibration) {
  return worst_ripple(calibration, [](const LensSample& sample, std::size_t c) { return sample.rgb[c]; });
}

double lens_line_ripple(const LensCalibration& calibration, const PerColour& parameter1,
                        const PerColour& parameter2) {
  return worst_ripple(calibration, [&](const LensSample& sample, std::size_t c) {
    return sample.rgb[c] * lens_gain(parameter1[c], parameter2[c], sample.x, calibration.centre.x);
  });
}

bool second_parameter_clamped(const LensCalibration& calibration) {
  // Up to a code above 0 nothing is lost.
  return std::ranges::any_of(calibration.fit.b, [](double b) { return b * 1024 >= 1; });
}

std::vector<std::string> lens_warnings(const LensCalibration& calibration) {
  std::vector<std::string> warnings;
  for (std::size_t c = 0; c < 3; ++c) {
    warn_of_readings(calibration, c, warnings);
    warn_of_limits(calibration, c, warnings);
  }
  const double before = lens_line_ripple(calibration);
  const double after = lens_line_ripple(calibration, calibration.fit.parameter1, calibration.fit.parameter2);
  // At a ratio of 0 nothing is meant to be corrected.
  if (after >= before && calibration.fit.a != std::array<double, 3>{}) {
    warnings.push_back("The corrected line is no flatter than the measured one: ripple " + fixed(before, 1) +
                       " % measured, " + fixed(after, 1) + " % corrected.");
  }
  return warnings;
}

std::vector<PickerPosition> field_positions(int screen_index) {
  const int width = lens_line_width(screen_index);
  const int height = width * 9 / 16;
  std::vector<PickerPosition> positions;
  for (int row = 0; row < kFieldRows; ++row) {
    for (int column = 0; column < kFieldColumns; ++column) {
      positions.push_back({kFieldMargin + column * (width - 2 * kFieldMargin) / (kFieldColumns - 1),
                           kFieldMargin + row * (height - 2 * kFieldMargin) / (kFieldRows - 1)});
    }
  }
  return positions;
}

std::array<double, 3> field_ripple(const LensField& field) {
  std::array<double, 3> ripple{};
  for (std::size_t c = 0; c < 3 && !field.empty(); ++c) {
    Extent extent;
    for (const PerColour& colour : field) extent.add(std::max(colour[c], 1));
    ripple[c] = extent.ripple();
  }
  return ripple;
}

FieldDoubt field_doubt(const LensField& field, std::size_t colour) {
  int highest = 0;
  for (const PerColour& place : field) highest = std::max(highest, place[colour]);
  if (highest >= kClippedCounts) return FieldDoubt::clipped;
  return highest < kDarkCounts ? FieldDoubt::dark : FieldDoubt::none;
}

std::vector<std::string> field_warnings(const LensField& field) {
  std::vector<std::string> warnings;
  for (std::size_t c = 0; c < 3; ++c) {
    const FieldDoubt doubt = field_doubt(field, c);
    if (doubt == FieldDoubt::clipped) warnings.push_back(clipped_text(c, "the ripple"));
    if (doubt == FieldDoubt::dark)
      warnings.push_back(std::string("No reading of ") + kNames[c] + " is above 1: is there light?");
  }
  return warnings;
}

bool field_tells(const LensField& field) {
  return field.size() == kFieldPlaces && field_warnings(field).empty();
}

}  // namespace qv5123
