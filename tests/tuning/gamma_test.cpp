#include "tuning/gamma.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tuning/gamma_chart.h"
#include "tuning/gamma_curve.h"

namespace qv5123 {
namespace {

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
  values.curve(GammaCurveId::red)[13] = 400;
  values.curve(GammaCurveId::green)[13] = values.curve(GammaCurveId::blue)[13] = 440;
  EXPECT_EQ(nearest_gamma_point(values, {180, 330}), (GammaHit{13, {GammaCurveId::red}}));
  EXPECT_EQ(nearest_gamma_point(values, {180, 313}),
            (GammaHit{13, {GammaCurveId::green, GammaCurveId::blue}}))
      << "points on top of one another move together";
  EXPECT_EQ(nearest_gamma_point(values, {2147483647, -2147483647}), std::nullopt);
  EXPECT_EQ(spin_gamma_point(3, -2147483647), 0);
}

}  // namespace
}  // namespace qv5123
