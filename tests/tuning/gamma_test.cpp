#include "tuning/gamma.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "tuning/gamma_chart.h"
#include "tuning/gamma_curve.h"
#include "tuning/traffic_text.h"

namespace qv5123 {
namespace {

/// Points that show where they went: red 256 + i, green 512 + i, blue 768 + i, front i.
GammaValues marked_values() {
  GammaValues values;
  for (int i = 0; i < 22; ++i) {
    values.curve(kRedCurve)[i] = 0x100 + i;
    values.curve(kGreenCurve)[i] = 0x200 + i;
    values.curve(kBlueCurve)[i] = 0x300 + i;
    values.curve(kFrontCurve)[i] = i;
  }
  return values;
}

GammaValues random_values(std::mt19937& random) {
  GammaValues values;
  for (GammaCurve& curve : values.curves) {
    for (int& point : curve) point = static_cast<int>(random() % 1024);
  }
  values.channel = values.loaded_channel = static_cast<GammaChannel>(random() % 5);
  return values;
}

TEST(Gamma, StoresTheEndCurvesAndTheSelection) {
  UserDataImage image;
  GammaValues values = marked_values();
  values.channel = kGammaBlue;
  save_to_user_data(values, image);
  EXPECT_EQ(image.entry(44), 1);
  EXPECT_EQ(image.word(45), 0x100);
  EXPECT_EQ(image.entry(87), 0x01);
  EXPECT_EQ(image.entry(88), 0x15) << "red point 22";
  EXPECT_EQ(image.word(89), 0x200);
  EXPECT_EQ(image.word(133), 0x300);
  EXPECT_EQ(image.word(175), 0x315);
  EXPECT_EQ(image.word(42), 0) << "the front curve is not stored";
}

TEST(Gamma, LoadsOnlyFromAnImageThatAFileWasReadInto) {
  UserDataImage image;
  image.set_word(2, (777 << 2) | 3);
  image.set_word(45, 500);
  image.set_word(47, 0xFFFF);
  image.set_entry(44, 99);
  GammaValues values = marked_values();
  reload_from_user_data(values, image);
  EXPECT_EQ(values.curves, GammaValues().curves);
  EXPECT_EQ(values.channel, kGammaRgb);

  values.channel = kGammaBlue;
  image.mark_loaded();
  reload_from_user_data(values, image);
  EXPECT_EQ(values.curve(kFrontCurve)[1], 777);
  EXPECT_EQ(values.curve(kRedCurve)[0], 500);
  EXPECT_EQ(values.curve(kRedCurve)[1], 1023) << "beyond the scale";
  EXPECT_EQ(values.channel, kGammaRgb) << "beyond the last selection";
}

TEST(Gamma, DecodesTheReply) {
  std::string reply(352, '0');
  reply.replace(4, 4, "0FFF");    // front point 2
  reply.replace(88, 4, "0123");   // red point 1
  reply.replace(260, 4, "00ab");  // green point 22
  reply.replace(348, 4, "03f8");  // blue point 22
  const auto values = decode_gamma_reply(reply, marked_values());
  ASSERT_TRUE(values);
  EXPECT_EQ(values->curve(kFrontCurve)[1], 1023);
  EXPECT_EQ(values->curve(kRedCurve)[0], 0x123);
  EXPECT_EQ(values->curve(kRedCurve)[1], 0);
  EXPECT_EQ(values->curve(kGreenCurve)[21], 0xAB);
  EXPECT_EQ(values->curve(kBlueCurve)[21], 1016);
  EXPECT_FALSE(decode_gamma_reply(reply.substr(0, 351), {}));
  EXPECT_EQ(encode_gamma_reply(marked_values()).substr(0, 12), "000000040008");
}

TEST(Gamma, RoundTripsThroughImageAndReply) {
  std::mt19937 random(1);
  for (int round = 0; round < 20; ++round) {
    const GammaValues values = random_values(random);
    EXPECT_EQ(decode_gamma_reply(encode_gamma_reply(values), {})->curves, values.curves);

    UserDataImage image;
    image.mark_loaded();
    save_to_user_data(values, image);
    GammaValues loaded;
    reload_from_user_data(loaded, image);
    loaded.curve(kFrontCurve) = values.curve(kFrontCurve);
    EXPECT_EQ(loaded, values);
  }
}

TEST(Gamma, AppliesTheSelectedCurvesPointByPoint) {
  GammaValues values = marked_values();
  const Traffic all = gamma_apply(values);
  ASSERT_EQ(all.size(), 66u);
  EXPECT_EQ(all[0], (Batch{{0x03, 0x01}, {0x03, 0x00}}));
  EXPECT_EQ(all[22], (Batch{{0x04, 0x02}, {0x04, 0x00}}));
  EXPECT_EQ(all[65], (Batch{{0x05, 0x03}, {0x05, 0x15}}));
  values.channel = kGammaGreen;
  EXPECT_EQ(gamma_apply(values), Traffic(all.begin() + 22, all.begin() + 44));
  values.channel = kGammaFront;
  EXPECT_TRUE(gamma_apply(values).empty());
}

TEST(Gamma, SavesBetweenTheBrackets) {
  GammaValues values = marked_values();
  values.loaded_channel = kGammaRed;
  values.channel = kGammaGreen;
  const std::string text = traffic_text(gamma_full_save(values));
  EXPECT_EQ(text.substr(0, 29), "f901|fa01|0301 0300|0301 0301");
  EXPECT_EQ(text.substr(text.size() - 34), "0503 0514|0503 0515|0602|fa00|f900");
  EXPECT_EQ(gamma_full_save(values).size(), 2u + 66 + 1 + 2);
}

TEST(GammaCurve, FollowsThePowerLawWithADarkEnd) {
  // With N = (1 / 0.45)^3 = 10.97 point 2 would be 8 - 9.
  EXPECT_EQ(end_gamma_curve(1.0, false, 16),
            (GammaCurve{0,   0,   5,   13,  22,  39,  57,  74,  91,  125, 158,
                        191, 223, 256, 320, 384, 448, 512, 640, 768, 896, 1016}));
  EXPECT_EQ(end_gamma_curve(0.4, false, 16)[3], 74) << "the other normaliser below 0.45";
  EXPECT_EQ(end_gamma_curve(0.45, false, 8),
            (GammaCurve{0,   0,   0,   0,   0,   36,  103, 168, 221, 308, 382,
                        442, 492, 537, 606, 658, 705, 749, 828, 899, 964, 1016}));
  EXPECT_EQ(end_gamma_curve(0.45, true, 16),
            (GammaCurve{0,   36,  72,  189, 215, 258, 294, 325, 352, 401, 444,
                        482, 516, 548, 606, 658, 705, 749, 828, 899, 964, 1016}));
  EXPECT_EQ(front_gamma_curve(1.0)[20], 896);
  EXPECT_EQ(front_gamma_curve(1.0)[21], 1016);
}

TEST(GammaCurve, AnyNumberGivesPointsOnTheScale) {
  for (double gamma : {0.0, -1.0, -1e300, 1e300, 1e-300, double(NAN), double(INFINITY)}) {
    for (double level : {0.0, 16.0, -1e300, double(NAN)}) {
      for (bool itu : {false, true}) {
        for (int point : end_gamma_curve(gamma, itu, level))
          EXPECT_TRUE(point >= 0 && point <= 1016) << gamma;
      }
    }
    for (int point : front_gamma_curve(gamma)) EXPECT_TRUE(point >= 0 && point <= 1016) << gamma;
  }
}

TEST(GammaCurve, SetFillsTheSelectionAndRefusesTheOtherValueBeingZero) {
  GammaValues values;
  values.channel = kGammaBlue;
  values.front_gamma_value = 0;
  EXPECT_EQ(set_end_gamma(values, 16), GammaResult::invalid);
  EXPECT_EQ(values.curves, GammaValues().curves);
  values.front_gamma_value = 1;
  EXPECT_EQ(set_end_gamma(values, 16), GammaResult::ok);
  EXPECT_EQ(values.curve(kBlueCurve), end_gamma_curve(0.45, false, 16));
  EXPECT_EQ(values.curve(kRedCurve), GammaCurve{});

  values.gamma_value = 0;
  EXPECT_EQ(set_front_gamma(values), GammaResult::invalid);
  values.gamma_value = 1;
  EXPECT_EQ(set_front_gamma(values), GammaResult::ok);
  EXPECT_EQ(values.curve(kFrontCurve)[10], 160);
}

TEST(GammaChart, PutsPointsOnPixelsAndPixelsOnPoints) {
  EXPECT_EQ(gamma_pixel(0, 0), (ChartPixel{50, 532}));
  EXPECT_EQ(gamma_pixel(1023, 1023), (ChartPixel{561, 21}));
  EXPECT_EQ(gamma_pixel(256, 101), (ChartPixel{178, 482}));
  EXPECT_EQ(gamma_value_at(482), 100);
  EXPECT_EQ(gamma_value_at(-2147483647 - 1), 1023);
  EXPECT_EQ(gamma_value_at(600), 0);
  EXPECT_EQ(gamma_polyline(GammaCurve{}).size(), 23u);
}

TEST(GammaChart, GrabsTheNearestShownPoint) {
  GammaValues values;
  values.curve(kRedCurve)[13] = 400;
  values.curve(kGreenCurve)[13] = values.curve(kBlueCurve)[13] = 440;
  EXPECT_EQ(nearest_gamma_point(values, {180, 330}), (GammaHit{13, {kRedCurve}}));
  const auto hit = nearest_gamma_point(values, {180, 313});
  EXPECT_EQ(hit, (GammaHit{13, {kGreenCurve, kBlueCurve}})) << "points on top of one another move together";
  move_gamma_point(values, *hit, 5000);
  EXPECT_EQ(values.curve(kBlueCurve)[13], 1023);
  EXPECT_EQ(values.curve(kRedCurve)[13], 400);
  EXPECT_EQ(nearest_gamma_point(values, {300, 100}), std::nullopt);
  EXPECT_EQ(nearest_gamma_point(values, {2147483647, -2147483647}), std::nullopt);
  EXPECT_EQ(spin_gamma_point(1020, 5), 1023);
  EXPECT_EQ(spin_gamma_point(3, -2147483647), 0);
}

}  // namespace
}  // namespace qv5123
