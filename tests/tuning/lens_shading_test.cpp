#include "tuning/lens_shading.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tuning/lens_fit.h"

namespace qv5123 {
namespace {

TEST(Picker, MovesWithinThePicture) {
  EXPECT_EQ(moved({100, 5}, PickerMove::up, 3), (PickerPosition{100, 0}));
  EXPECT_EQ(moved({2300, 5}, PickerMove::right, 2), (PickerPosition{2303, 5}));
  EXPECT_EQ(moved({2300, 1535}, PickerMove::down, 99), (PickerPosition{2300, 1535}));
  EXPECT_EQ(moved({2147483647, -5}, PickerMove::left, 7), (PickerPosition{2175, 0}));
}

TEST(LensFit, TakesTheCentreFromBlueAndTruncates) {
  std::vector<LensSample> samples;
  for (int x : lens_positions(1280)) {
    samples.push_back({x, {2000000 - (x - 500) * (x - 500), -x, 1000000 - (x - 799) * (x - 800)}, 0});
  }
  const LensCentre centre = fit_lens_centre(samples, 1280);
  EXPECT_NEAR(centre.peak[0], 2000000, 1);
  EXPECT_NEAR(centre.x, 799, 1);
  EXPECT_EQ(lens_sample(16, {100, 200, 50}).luma, 167);  // 21.26 + 143.04 + 3.61
}

TEST(LensFit, ClampsAndSurvivesWhatCannotBeFitted) {
  const LensCentre steep{640, {255, 255, 255}, {}, {}};
  std::vector<LensSample> samples;
  for (int x : lens_positions(1280))
    samples.push_back({x, {x < 640 ? 1 : 2, 255 - std::abs(x - 640) / 3, 255}, 0});
  const LensFit fit = fit_lens(samples, steep, 100);
  EXPECT_EQ(fit.parameter1[0], 4095);
  EXPECT_GT(fit.b[1], 0);
  EXPECT_EQ(fit.parameter2[1], 0) << "a rising fourth power cannot be expressed";

  EXPECT_FALSE(fit_lens({{16, {0, 0, 0}, 0}}, {}, 100).determined);
  EXPECT_FALSE(fit_lens({}, {}, 100).determined);
  LensCalibration empty;
  LensValues values;
  values.parameter1[1] = 7;
  EXPECT_EQ(recompute_lens(empty, values), "");
  EXPECT_EQ(values.parameter1[1], 7);
}

}  // namespace
}  // namespace qv5123
