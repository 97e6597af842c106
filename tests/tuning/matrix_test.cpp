#include "tuning/matrix.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tuning/matrix_fit.h"
#include "tuning/patch_report.h"

namespace qv5123 {
namespace {

/// The chart through a sensor whose colours leak into one another; `level` counts for white.
MeasuredColours leaking_chart(double level) {
  constexpr double kLeak[3][3] = {{0.7038961039, 0.2051948052, 0.0909090909},
                                  {0.1324675325, 0.7766233766, 0.0909090909},
                                  {0.0632034632, 0.2398268398, 0.6969696970}};
  MeasuredColours chart{};
  for (std::size_t i = 0; i < kPatches; ++i) {
    for (std::size_t r = 0; r < 3; ++r) {
      double light = 0;
      for (std::size_t j = 0; j < 3; ++j) light += kLeak[r][j] * kPatchReferences[i][j];
      chart[i][r] = static_cast<std::uint32_t>(std::lround(level * light));
    }
  }
  return chart;
}

TEST(Matrix, CodesAreTwosComplement) {
  EXPECT_EQ(matrix_code_text(-0.25f), "0x1F00");
  EXPECT_EQ(matrix_code_text(1.0f), "0x0400");
  EXPECT_EQ(matrix_code_text(0.9999f), "0x03FF");
  EXPECT_EQ(matrix_coefficient_of("0x1F00"), -0.25f);
  EXPECT_EQ(matrix_coefficient_of("3ff"), 0x3FF / 1024.0f);
  for (const char* text : {"", "0x", "0x2000", "-1", "0x04 ", "1.0"})
    EXPECT_FALSE(matrix_coefficient_of(text));
  EXPECT_EQ(matrix_code(NAN), 0);
}

TEST(MatrixFit, TakesGreysAloneButNotWithoutThem) {
  MatrixValues values;
  values.measured = leaking_chart(200);
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (i < kFirstGrey || i > kLastGrey) values.measured[i] = {};
  }
  ASSERT_NE(calculate_matrix(values), MatrixResult::no_grey);
  for (const auto& row : values.coefficients) EXPECT_NEAR(row[0] + row[1] + row[2], 1, 1e-3);

  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) values.measured[i] = {4'294'967'295u, 1, 1};
  EXPECT_EQ(calculate_matrix(values), MatrixResult::unsolvable) << "four times the same";

  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) values.measured[i][2] = 0;
  const auto tables = values.tables;
  EXPECT_EQ(calculate_matrix(values), MatrixResult::no_grey);
  EXPECT_EQ(values.tables, tables);
  EXPECT_FALSE(patch_report(values.measured, values.coefficients));
}

TEST(MatrixFit, LeavesOutPatchesWithAZeroButBalancesWithThem) {
  MeasuredColours chart = leaking_chart(1000);
  MeasuredColours without = chart;
  chart[0] = {50, 0, 4'000'000'000};
  without[0] = {};
  EXPECT_EQ(fit_matrix(chart, 100)->coefficients, fit_matrix(without, 100)->coefficients);
  EXPECT_FALSE(patch_report(chart, {})->patches[0]);

  MeasuredColours greys{};
  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) greys[i] = {10, 20, 40};
  greys[kFirstGrey][1] = 0;
  EXPECT_EQ((*balance_patches(greys))[kFirstGrey], (std::array<double, 3>{15, 0, 15}))
      << "red by 60 / 40, blue by 60 / 160";
}

}  // namespace
}  // namespace qv5123
