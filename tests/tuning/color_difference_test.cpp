#include "tuning/color_difference.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

struct Pair {
  Lab one;
  Lab other;
  double difference;
};

// Of the test data published with the formula (Sharma, Wu, Dalal 2005), chosen there for the jumps in hue.
constexpr Pair kPairs[] = {
    {{50, 2.6772, -79.7751}, {50, 0, -82.7485}, 2.0425},
    {{50, 0, 0}, {50, -1, 2}, 2.3669},
    {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0011}, 7.2195},
    {{50, 2.5, 0}, {73, 25, -18}, 27.1492},
    {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
};

TEST(ColorDifference, MatchesThePublishedPairsBothWays) {
  for (const Pair& pair : kPairs) {
    EXPECT_NEAR(ciede2000(pair.one, pair.other), pair.difference, 5e-5) << pair.other.a;
    EXPECT_NEAR(ciede2000(pair.other, pair.one), pair.difference, 5e-5) << pair.other.a;
  }
}

TEST(ColorDifference, ConvertsFromLinearSrgb) {
  const Lab red = lab_of({1, 0, 0});
  EXPECT_NEAR(red.l, 53.24, 0.01);
  EXPECT_NEAR(red.a, 80.09, 0.02);
  EXPECT_LT(lab_of({-0.04, 0.27, 0.44}).a, 0) << "outside the gamut is still a colour";
  EXPECT_EQ(display_colour({1, 0.2158605, -3}), 0xFF8000u);
}

}  // namespace
}  // namespace qv5123
