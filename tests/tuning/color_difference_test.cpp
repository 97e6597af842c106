#include "tuning/color_difference.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

struct Pair {
  Lab one;
  Lab other;
  double difference;
};

// The test data published with the formula (Sharma, Wu, Dalal 2005), chosen there for the jumps in hue.
constexpr Pair kPairs[] = {
    {{50, 2.6772, -79.7751}, {50, 0, -82.7485}, 2.0425},
    {{50, -1.3802, -84.2814}, {50, 0, -82.7485}, 1.0000},
    {{50, 0, 0}, {50, -1, 2}, 2.3669},
    {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0009}, 7.1792},
    {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0011}, 7.2195},
    {{50, -0.0010, 2.4900}, {50, 0.0009, -2.4900}, 4.8045},
    {{50, -0.0010, 2.4900}, {50, 0.0011, -2.4900}, 4.7461},
    {{50, 2.5, 0}, {50, 0, -2.5}, 4.3065},
    {{50, 2.5, 0}, {73, 25, -18}, 27.1492},
    {{50, 2.5, 0}, {61, -5, 29}, 22.8977},
    {{50, 2.5, 0}, {50, 3.1736, 0.5854}, 1.0000},
    {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
    {{63.0109, -31.0961, -5.8663}, {62.8187, -29.7946, -4.0864}, 1.2630},
    {{35.0831, -44.1164, 3.7933}, {35.0232, -40.0716, 1.5901}, 1.8645},
    {{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
    {{90.8027, -2.0831, 1.4410}, {91.1528, -1.6435, 0.0447}, 1.4441},
    {{6.7747, -0.2908, -2.4247}, {5.8714, -0.0985, -2.2286}, 0.6377},
    {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
};

TEST(ColorDifference, MatchesThePublishedPairsBothWays) {
  for (const Pair& pair : kPairs) {
    EXPECT_NEAR(ciede2000(pair.one, pair.other), pair.difference, 5e-5) << pair.other.a;
    EXPECT_NEAR(ciede2000(pair.other, pair.one), pair.difference, 5e-5) << pair.other.a;
  }
}

TEST(ColorDifference, ConvertsFromLinearSrgb) {
  const Lab white = lab_of({1, 1, 1});
  EXPECT_NEAR(white.l, 100, 1e-9);
  EXPECT_NEAR(white.a, 0, 1e-9);
  EXPECT_NEAR(white.b, 0, 1e-9);
  const Lab red = lab_of({1, 0, 0});
  EXPECT_NEAR(red.l, 53.24, 0.01);
  EXPECT_NEAR(red.a, 80.09, 0.02);
  EXPECT_NEAR(red.b, 67.22, 0.02);
  EXPECT_LT(lab_of({-0.04, 0.27, 0.44}).a, 0) << "outside the gamut is still a colour";
  EXPECT_EQ(display_colour({1, 0.2158605, -3}), 0xFF8000u);
}

}  // namespace
}  // namespace qv5123
