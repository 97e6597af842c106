#include "tuning/lens_shading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tuning/lens_fit.h"

namespace qv5123 {
namespace {

LensValues marked_values() {
  LensValues values;
  values.parameter1 = {0x123, 0x234, 0x345};
  values.parameter2 = {0xF01, 0xF02, 0xF03};
  return values;
}

/// A field whose light falls off as 1 / (1 + a d^2 - b d^4) about `centre`.
std::vector<LensSample> falling_samples(int width, int centre, double a, double b, double level) {
  std::vector<LensSample> samples;
  for (int x : lens_positions(width)) {
    const double d = (x - centre) / 2048.0;
    const int value = static_cast<int>(std::lround(level / (1 + a * d * d - b * d * d * d * d)));
    samples.push_back(lens_sample(x, {value, value, value}));
  }
  return samples;
}

TEST(LensShading, DecodesTheReply) {
  EXPECT_EQ(decode_lens_reply("0123023403450f010F020F03", {}), marked_values());
  EXPECT_FALSE(decode_lens_reply("0123023403450f010F020F0", {}));
  EXPECT_EQ(decode_lens_reply("ffff02340345000000000000", {})->parameter1[0], 4095);
}

TEST(Picker, MovesWithinThePictureAndKeepsOtherBits) {
  EXPECT_EQ(moved({100, 5}, PickerMove::up, 3), (PickerPosition{100, 0}));
  EXPECT_EQ(moved({2300, 5}, PickerMove::right, 2), (PickerPosition{2303, 5}));
  EXPECT_EQ(moved({2300, 1535}, PickerMove::down, 99), (PickerPosition{2300, 1535}));
  EXPECT_EQ(moved({2147483647, -5}, PickerMove::left, 7), (PickerPosition{2175, 0}));
  EXPECT_EQ(lens_picker_switch_bytes(true, 0x41, 0x3F),
            (IspBytes{{0xA10, 0x2F}, {0xA20, 0x80}, {0xA29, 0xC1}}));
  EXPECT_EQ(lens_picker_switch_bytes(false, 0xC1, 0x2F),
            (IspBytes{{0xA10, 0x3F}, {0xA20, 0x90}, {0xA29, 0x41}}));
}

TEST(LensFit, RecoversAKnownFallOff) {
  // Levels far finer than the chip's 8 bits, so that only the method is under test.
  LensCalibration calibration;
  calibration.samples = falling_samples(1920, 900, 0.5, 0.3, 1e6);
  calibration.centre = fit_lens_centre(calibration.samples, 1920);
  EXPECT_NEAR(calibration.centre.x, 900, 10);
  calibration.centre.x = 900;
  calibration.centre.peak = {1000000, 1000000, 1000000};
  LensValues values;
  recompute_lens(calibration, values);
  EXPECT_TRUE(calibration.fit.determined);
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(values.parameter1[c], 512, 1);
    EXPECT_NEAR(values.parameter2[c], 307, 2);
  }
  for (const LensSample& sample : calibration.samples) {
    EXPECT_NEAR(corrected_level(calibration, values, sample, 1), 1e6, 500) << sample.x;
  }
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
  LensCalibration calibration;
  calibration.samples = falling_samples(1280, 640, 0.5, 0, 1e6);
  calibration.centre = fit_lens_centre(calibration.samples, 1280);
  LensValues values;
  values.ratio = 0;
  recompute_lens(calibration, values);
  EXPECT_EQ(values.parameter1, PerColour{});
  EXPECT_EQ(values.parameter2, PerColour{});

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
  values = marked_values();
  EXPECT_EQ(recompute_lens(empty, values), "");
  EXPECT_EQ(values, marked_values());
}

}  // namespace
}  // namespace qv5123
