#pragma once

#include <array>
#include <string>
#include <vector>

#include "tuning/lens_shading.h"

/// From the fall-off along one line of the picture to the lens shading parameters.
namespace qv5123 {

/// What the picker measured at one position of the sweep.
struct LensSample {
  int x = 0;
  PerColour rgb{};  ///< 1..255
  int luma = 0;     ///< by the ITU-R BT.709 weights, truncated
  friend bool operator==(const LensSample&, const LensSample&) = default;
};
LensSample lens_sample(int x, const PerColour& rgb);

/// Pixels in a line of entry `screen_index` of "Screen Size:".
constexpr int lens_line_width(int screen_index) {
  return screen_index == 1 ? 1280 : 1920;
}

/// The positions of the sweep in their order: every 16 + 32 m below `width`, interleaved in eight passes so
/// that slow changes of the light spread over the whole line.
std::vector<int> lens_positions(int width);

/// c(x) = p0 + p1 x + p2 x^2.
struct Parabola {
  double p0 = 0, p1 = 0, p2 = 0;
  double at(double x) const { return p0 + p1 * x + p2 * x * x; }
};

/// The optical centre along the line and the brightest level of each colour.
struct LensCentre {
  int x = 0;           ///< the one of blue, the colour that falls off most and so shows it best
  PerColour peak{};    ///< truncated maximum of each curve over the line
  PerColour peak_x{};  ///< where each colour has its own
  std::array<Parabola, 3> curves{};
};
LensCentre fit_lens_centre(const std::vector<LensSample>& samples, int width);

/// gain - 1 = a d^2 + b d^4 for each colour, with d = (x - centre) / 2048.
struct LensFit {
  std::array<double, 3> a{};
  std::array<double, 3> b{};
  PerColour parameter1{};  ///< a, 1024 = 1.0, clamped to 0..4095
  PerColour parameter2{};  ///< -b, 1024 = 1.0, clamped to 0..4095
  bool determined = true;  ///< false when there were too few positions
};
/// `ratio` is in percent. A sample of 0 has no gain; the result is then not determined.
LensFit fit_lens(const std::vector<LensSample>& samples, const LensCentre& centre, int ratio);

/// All that a calibration measured and made of it.
struct LensCalibration {
  int width = 1920;  ///< of the line, pixels
  std::vector<LensSample> samples;
  LensCentre centre;
  LensFit fit;
  bool first_alone = false;  ///< parameter 1 is fitted without the other, which is 0
};

/// Parameter 1 where gain - 1 = a d^2 alone is fitted. `ratio` is in percent.
PerColour first_parameter_alone(const LensCalibration& calibration, int ratio);

/// Fits `calibration` anew for the ratio in `values`, puts the parameters there and returns what the log
/// gets. Nothing happens without samples.
std::string recompute_lens(LensCalibration& calibration, LensValues& values);

/// What `colour` (0..2) of a sample comes to once the chip applies the parameters in `values`.
double corrected_level(const LensCalibration& calibration, const LensValues& values, const LensSample& sample,
                       std::size_t colour);

/// The gain that the chip applies `x` pixels along the line with these parameters.
double lens_gain(int parameter1, int parameter2, int x, int centre_x);

/// The log's lines, CR LF at their ends.
std::string lens_sample_log(const LensSample& sample);
/// What a fit adds to the log: the centre, then a and b of each colour, then the mark of both rows sent.
std::string lens_fit_log(const LensCentre& centre, const LensFit& fit);

}  // namespace qv5123
