#pragma once

#include <array>

#include "console/user_data_image.h"
#include "simulator/scene.h"

namespace qv5123 {

/// Brightness as the chip weighs it.
double luma_of(const Light& colour);

/// How the chip tells white from colour, by the white lines in the user data: a colour between lines A and B,
/// or between C and D, left of E and below F on the plane of Cb/Y across and Cr/Y up.
class WhiteTest {
 public:
  WhiteTest() = default;
  explicit WhiteTest(const UserDataImage& data);
  bool is_white(const Light& colour) const;
  friend bool operator==(const WhiteTest&, const WhiteTest&) = default;

 private:
  struct Line {
    double slope = 0;
    double intercept = 0;
    double at(double x) const { return slope * x + intercept; }
    friend bool operator==(const Line&, const Line&) = default;
  };
  std::array<Line, 4> lines_{};  ///< A to D
  double right_ = 0;             ///< E
  double top_ = 0;               ///< F
};

}  // namespace qv5123
