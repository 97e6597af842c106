#include "tuning/awb_chart.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

TEST(AwbChart, LinesLieWhereTheWordsPutThem) {
  AwbValues values;
  values.words = {256, 128, 0, 0, -256, 0, 0, 64, 128, -128};
  const auto lines = awb_chart_lines(values);
  EXPECT_EQ(lines[0].from.x, -160);
  EXPECT_NEAR(lines[0].from.y, 60, 1e-9) << "y = -0.8 + 0.5, downwards";
  EXPECT_EQ(lines[0].letter, (ChartPoint{-164, lines[0].from.y}));
  EXPECT_EQ(lines[4].from, (ChartPoint{100, -60}));
  EXPECT_EQ(lines[5].to, (ChartPoint{20, 100}));
}

TEST(AwbChart, PatchesWithoutLumaAreNotDrawn) {
  AwbValues values;
  values.patches[0] = {300, 0, 0};
  values.patches[18] = {128, 128, 128};
  values.patches[19] = {-5, 0, 0};
  const auto patches = awb_chart_patches(values);
  ASSERT_EQ(patches.size(), 2u);
  EXPECT_NEAR(patches[0].centre.x, 200 * -0.16797 / 0.296875, 1e-9) << "drawn as 255";
  EXPECT_NEAR(patches[0].centre.y, -200 * 0.5 / 0.296875, 1e-9);
  EXPECT_EQ(patches[0].side, 4);
  EXPECT_EQ(patches[1].row, 18u);
  EXPECT_NEAR(patches[1].centre.x, 0, 1e-2);
}

}  // namespace
}  // namespace qv5123
