#pragma once

#include "simulator/camera.h"
#include "simulator/chip_state.h"

namespace qv5123 {

/// The chip's test for white, a picture of the white lines in the user data: a colour between lines A and B,
/// or between C and D, left of E and below F on the Cb/Y-Cr/Y plane.
class WhiteTest {
 public:
  explicit WhiteTest(const UserDataImage& data);
  bool is_white(const Light& colour) const;

 private:
  struct Line {
    double slope, intercept;
    double at(double x) const { return slope * x + intercept; }
  };
  std::array<Line, 4> lines_{};  ///< A to D
  double right_ = 0;             ///< E
  double top_ = 0;               ///< F
};

/// Lets the AE task, where it runs, set the sensor's gain, and then the AWB task the white balance gains.
/// Both reach their aim at once; one that is stopped leaves everything as it is. AE brings the brightest spot
/// of the picture to 9 counts of luma per unit of its target; AWB makes what it takes for white neutral, and
/// changes nothing where the picture has no white.
void run_auto_tasks(const Camera& camera, ChipState& chip);

}  // namespace qv5123
