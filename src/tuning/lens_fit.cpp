#include "tuning/lens_fit.h"

#include <algorithm>
#include <cmath>

#include "base/saturate.h"
#include "base/text.h"
#include "tuning/linear_solve.h"

namespace qv5123 {
namespace {

constexpr double kParameterUnit = 1024;
/// Distances from the centre are in units of this many pixels.
constexpr double kDistanceUnit = 2048;

double squared_distance(int x, int centre_x) {
  const double d = (static_cast<double>(x) - centre_x) / kDistanceUnit;
  return d * d;
}

Parabola fit_parabola(const std::vector<LensSample>& samples, std::size_t colour) {
  LeastSquares<3> squares;
  for (const LensSample& sample : samples) {
    const double x = sample.x;
    squares.add({1, x, x * x}, sample.rgb[colour]);
  }
  const auto [p0, p1, p2] = squares.solve().solution;
  return {p0, p1, p2};
}

struct Peak {
  double level = 0;
  long long positions = 0;
  int count = 0;
};

Peak find_peak(const Parabola& curve, int width) {
  Peak peak;
  for (int x = 0; x < width; ++x) {
    const double level = curve.at(x);
    if (level > peak.level) peak = {level, 0, 0};
    if (level == peak.level) {
      peak.positions += x;
      ++peak.count;
    }
  }
  return peak;
}

LeastSquaresResult<2> fit_gain(const std::vector<LensSample>& samples, const LensCentre& centre,
                               std::size_t colour, double ratio) {
  LeastSquares<2> squares;
  for (const LensSample& sample : samples) {
    const double gain = (static_cast<double>(centre.peak[colour]) / sample.rgb[colour] - 1) * ratio;
    const double d2 = squared_distance(sample.x, centre.x);
    squares.add({d2, d2 * d2}, gain);
  }
  return squares.solve();
}

int parameter_of(double coefficient) {
  return std::clamp(saturate_to_int(coefficient * kParameterUnit), 0, kLensParameterMaximum);
}

}  // namespace

LensSample lens_sample(int x, const PerColour& rgb) {
  return {x, rgb, saturate_to_int(0.2126 * rgb[0] + 0.7152 * rgb[1] + 0.0722 * rgb[2])};
}

std::vector<int> lens_positions(int width) {
  std::vector<int> positions;
  for (int i = 0; i < 8; ++i) {
    for (int k = 0; k < 8; ++k) {
      const int x = 16 + 32 * i + 256 * k;
      if (x < width) positions.push_back(x);
    }
  }
  return positions;
}

LensCentre fit_lens_centre(const std::vector<LensSample>& samples, int width) {
  LensCentre centre;
  for (std::size_t c = 0; c < 3; ++c) {
    centre.curves[c] = fit_parabola(samples, c);
    const Peak peak = find_peak(centre.curves[c], width);
    centre.peak[c] = saturate_to_int(peak.level);
    centre.peak_x[c] = peak.count > 0 ? static_cast<int>(peak.positions / peak.count) : 0;
  }
  centre.x = centre.peak_x[2];
  return centre;
}

LensFit fit_lens(const std::vector<LensSample>& samples, const LensCentre& centre, int ratio) {
  LensFit fit;
  for (std::size_t c = 0; c < 3; ++c) {
    const auto [solution, determined] = fit_gain(samples, centre, c, ratio / 100.0);
    fit.a[c] = solution[0];
    fit.b[c] = solution[1];
    fit.parameter1[c] = parameter_of(fit.a[c]);
    fit.parameter2[c] = parameter_of(-fit.b[c]);
    fit.determined = fit.determined && determined;
  }
  return fit;
}

double lens_gain(int parameter1, int parameter2, int x, int centre_x) {
  const double d2 = squared_distance(x, centre_x);
  return 1 + parameter1 / kParameterUnit * d2 - parameter2 / kParameterUnit * d2 * d2;
}

PerColour first_parameter_alone(const LensCalibration& calibration, int ratio) {
  PerColour parameter{};
  for (std::size_t c = 0; c < 3; ++c) {
    LeastSquares<1> squares;
    for (const LensSample& sample : calibration.samples) {
      const double gain = (static_cast<double>(calibration.centre.peak[c]) / sample.rgb[c] - 1) * ratio / 100;
      squares.add({squared_distance(sample.x, calibration.centre.x)}, gain);
    }
    parameter[c] = parameter_of(squares.solve().solution[0]);
  }
  return parameter;
}

std::string recompute_lens(LensCalibration& calibration, LensValues& values) {
  if (calibration.samples.empty()) return {};
  calibration.fit = fit_lens(calibration.samples, calibration.centre, values.ratio);
  if (calibration.first_alone) {
    calibration.fit.parameter1 = first_parameter_alone(calibration, values.ratio);
    calibration.fit.parameter2 = {};
  }
  values.parameter1 = calibration.fit.parameter1;
  values.parameter2 = calibration.fit.parameter2;
  values.calibrated = true;
  return lens_fit_log(calibration.centre, calibration.fit);
}

double corrected_level(const LensCalibration& calibration, const LensValues& values, const LensSample& sample,
                       std::size_t colour) {
  return sample.rgb[colour] *
         lens_gain(values.parameter1[colour], values.parameter2[colour], sample.x, calibration.centre.x);
}

std::string lens_sample_log(const LensSample& sample) {
  return "X pos: " + std::to_string(sample.x) + " \tR=" + std::to_string(sample.rgb[0]) +
         "\tG=" + std::to_string(sample.rgb[1]) + "\tB=" + std::to_string(sample.rgb[2]) + "\r\n";
}

std::string lens_fit_log(const LensCentre& centre, const LensFit& fit) {
  std::string log = "Center horizontal pos: " + std::to_string(centre.x) + "\r\n";
  for (std::size_t c = 0; c < 3; ++c) log += fixed(fit.a[c], 6) + ", " + fixed(fit.b[c], 6) + ", \r\n";
  return log + " ";
}

}  // namespace qv5123
