#include "tuning/lens_shading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "tuning/lens_fit.h"
#include "tuning/traffic_text.h"

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

TEST(LensShading, KeepsItsParametersInTheUserDataAndTheReply) {
  UserDataImage image;
  save_to_user_data(marked_values(), image);
  const std::vector<int> entries(image.bytes().begin() + 440, image.bytes().begin() + 452);
  EXPECT_EQ(entries,
            (std::vector<int>{0x01, 0x23, 0x02, 0x34, 0x03, 0x45, 0x0F, 0x01, 0x0F, 0x02, 0x0F, 0x03}));
  EXPECT_EQ(encode_lens_reply(marked_values()), "0123023403450f010f020f03");
  EXPECT_EQ(decode_lens_reply("0123023403450f010F020F03", {}), marked_values());
  EXPECT_FALSE(decode_lens_reply("0123023403450f010F020F0", {}));
  EXPECT_EQ(decode_lens_reply("ffff02340345000000000000", {})->parameter1[0], 4095);
}

TEST(LensShading, RoundTripsThroughImageAndReply) {
  std::mt19937 random(2);
  for (int round = 0; round < 20; ++round) {
    LensValues values;
    for (PerColour* row : {&values.parameter1, &values.parameter2}) {
      for (int& parameter : *row) parameter = static_cast<int>(random() % 4096);
    }
    UserDataImage image;
    save_to_user_data(values, image);
    LensValues loaded;
    reload_from_user_data(loaded, image);
    EXPECT_EQ(loaded, values);
    EXPECT_EQ(decode_lens_reply(encode_lens_reply(values), {}), values);
  }
}

TEST(LensShading, SendsAndSavesInOrder) {
  EXPECT_EQ(traffic_text(lens_send_parameters(marked_values())),
            "6401 6423 6402 6434 6403 6445|650f 6501 650f 6502 650f 6503");
  EXPECT_EQ(traffic_text(lens_full_save(marked_values())),
            "f901|fa01|6401 6423|6402 6434|6403 6445|650f 6501|650f 6502|650f 6503|fa00|f900");
}

TEST(LensShading, FlickerBoxesToggleAndExclude) {
  EXPECT_EQ(flicker_after_ntsc(flicker_after_ntsc(kFlickerOff)), kFlickerOff);
  EXPECT_EQ(flicker_after_pal(flicker_after_ntsc(kFlickerOff)), kFlickerPal);
  EXPECT_EQ(flicker_after_ntsc(kFlickerPal), kFlickerNtsc);
  EXPECT_EQ(flicker_after_pal(kFlickerPal), kFlickerOff);
  EXPECT_EQ(flicker_mode_write(kFlickerNtsc), (Batch{{0xBD, 2}}));
}

TEST(Picker, MovesWithinThePictureAndKeepsOtherBits) {
  EXPECT_EQ(moved({100, 5}, PickerMove::up, 3), (PickerPosition{100, 0}));
  EXPECT_EQ(moved({2300, 5}, PickerMove::right, 2), (PickerPosition{2303, 5}));
  EXPECT_EQ(moved({2300, 1535}, PickerMove::down, 99), (PickerPosition{2300, 1535}));
  EXPECT_EQ(moved({2147483647, -5}, PickerMove::left, 7), (PickerPosition{2175, 0}));
  EXPECT_EQ(picker_position_bytes({960, 540}),
            (IspBytes{{0xC3A, 0x02}, {0xC3B, 0x1C}, {0xC38, 0x03}, {0xC39, 0xC0}}));
  EXPECT_EQ(lens_picker_switch_bytes(true, 0x41, 0x3F),
            (IspBytes{{0xA10, 0x2F}, {0xA20, 0x80}, {0xA29, 0xC1}}));
  EXPECT_EQ(lens_picker_switch_bytes(false, 0xC1, 0x2F),
            (IspBytes{{0xA10, 0x3F}, {0xA20, 0x90}, {0xA29, 0x41}}));
  EXPECT_EQ(traffic_text(picker_task_traffic(true)), "a000|a100");
  EXPECT_EQ(traffic_text(picker_task_traffic(false)), "a001|a101");
}

TEST(LensFit, SweepsInterleaved) {
  const std::vector<int> full = lens_positions(lens_line_width(0));
  ASSERT_EQ(full.size(), 60u);
  EXPECT_EQ(std::vector<int>(full.begin() + 6, full.begin() + 10), (std::vector<int>{1552, 1808, 48, 304}));
  EXPECT_EQ(*std::max_element(full.begin(), full.end()), 1904);
  const std::vector<int> half = lens_positions(lens_line_width(1));
  EXPECT_EQ(half.size(), 40u);
  EXPECT_EQ(*std::max_element(half.begin(), half.end()), 1264);
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

TEST(LensFit, LogsWordForWord) {
  EXPECT_EQ(lens_sample_log({272, {10, 20, 30}, 0}), "X pos: 272 \tR=10\tG=20\tB=30\r\n");
  LensFit fit;
  fit.a = {0.5, 0.25, 1.0 / 3};
  fit.b = {-0.125, 1e-9, -2};
  EXPECT_EQ(lens_fit_log({960, {}, {}, {}}, fit),
            "Center horizontal pos: 960\r\n0.500000, -0.125000, \r\n0.250000, 0.000000, \r\n0.333333, "
            "-2.000000, \r\n ");
}

}  // namespace
}  // namespace qv5123
