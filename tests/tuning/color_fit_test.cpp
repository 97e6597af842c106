#include "tuning/color_fit.h"

#include <gtest/gtest.h>

#include "support/chart_readings.h"
#include "support/patch_fits.h"
#include "tuning/matrix_diagnosis.h"

using namespace qv5123;
using namespace qv5123::test;

namespace {

constexpr const char* kScenes[] = {
    "chart",       "chart-turned", "chart-angle",  "chart-cos4", "chart-metameric",
    "chart-flare", "chart-warm",   "chart-bright", "chart-dark", "chart-turned-metameric-flare-warm-cos4"};

std::string all_warnings(const char* scene) {
  MatrixValues values;
  values.measured = test::chart_readings(scene);
  calculate_matrix(values);
  std::string all;
  for (const std::string& warning : matrix_warnings(values)) all += warning + "\n";
  return all;
}

}  // namespace

TEST(ColorFit, IsCloserThanCalculateAlsoOnPatchesThatItHasNotSeen) {
  for (const auto& [noise, pictures] : {std::pair("off", 1u), {"low", 3u}}) {
    for (const char* scene : kScenes) {
      SCOPED_TRACE(std::string(scene) + ", noise " + noise);
      double fitted = 0, fitted_by_calculate = 0, left_out = 0, left_out_by_calculate = 0;
      for (std::uint64_t seed = 1; seed <= pictures; ++seed) {
        const MeasuredColours measured = test::chart_readings(scene, noise, seed);
        const ExposedPatches patches = *exact_patches(measured);
        const Coefficients rows = color_difference(measured, patches);
        EXPECT_EQ(rows, as_registers_hold(rows)) << "whole codes";
        for (const auto& row : rows) EXPECT_EQ(row[0] + row[1] + row[2], 1);
        fitted += mean_difference(patches, rows);
        fitted_by_calculate += mean_difference(patches, calculated(measured, patches));
        left_out += mean_left_out(measured, color_difference);
        left_out_by_calculate += mean_left_out(measured, calculated);
      }
      EXPECT_LT(fitted, fitted_by_calculate);
      // Where noise meets a count that is a tenth of a patch it is a matter of chance which is ahead.
      const bool chance = pictures > 1 && std::string(scene) == "chart-dark";
      EXPECT_LT(left_out, left_out_by_calculate * (chance ? 1.01 : 1));
    }
  }
}

TEST(ColorFit, HoldsTheNoiseLimitAndHearsTheWeight) {
  const MeasuredColours measured = test::chart_readings("chart-turned-metameric-flare-warm-cos4");
  ColorFitOptions quiet;
  quiet.noise_limit = 120;
  const Coefficients quiet_rows = *fit_color_difference(measured, quiet);
  for (const auto& row : quiet_rows) EXPECT_LE(noise_gain(row), 1.2);
  ColorFitOptions memory;
  memory.memory_weight = 10;
  const auto memory_mean = [&](const ColorFitOptions& options) {
    ExposedPatches patches = *exact_patches(measured);
    for (std::size_t i = 0; i < kPatches; ++i)
      if (!is_memory_colour(i)) patches[i].reset();
    return mean_difference(patches, *fit_color_difference(measured, options));
  };
  EXPECT_LT(memory_mean(memory), memory_mean({}));

  EXPECT_FALSE(fit_color_difference(MeasuredColours{}, {}));
}

TEST(MatrixDiagnosis, TellsHowFarThePatchesCanBeTrusted) {
  const MeasuredColours measured = test::chart_readings("chart-metameric");
  const MatrixDiagnosis found = *diagnose_patches(measured, 100);
  EXPECT_EQ(found.patches, 24u);
  EXPECT_EQ(found.coloured, 18u);
  EXPECT_NEAR(found.condition, 9.5, 1);
  const MatrixFit whole = *fit_matrix(measured, 100);
  EXPECT_GT(found.left_out.mean, patch_report(measured, whole.coefficients)->after.mean);
  ASSERT_EQ(found.pulls.size(), 24u);
  EXPECT_GT(found.pulls[0].change, 2 * found.pulls[12].change);
  EXPECT_FALSE(diagnose_patches(MeasuredColours{}, 100));
}

TEST(MatrixDiagnosis, WarnsOfWhatAmplifiesErrors) {
  EXPECT_EQ(all_warnings("chart"), "");
  EXPECT_EQ(all_warnings("chart-turned-metameric-flare-cos4"), "");
  EXPECT_EQ(all_warnings("chart-bright").find("Clipped, over 250 counts: "), 0u);

  const auto first = [](const MatrixValues& values) { return matrix_warnings(values).at(0); };
  MatrixValues values;
  values.measured = test::chart_readings("chart");
  std::fill(values.measured.begin(), values.measured.begin() + 18, MeasuredColour{});
  calculate_matrix(values);
  values.coefficients = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  EXPECT_EQ(first(values), "Only grays were measured: they say nothing of colors.");
  values.measured[3] = {50, 60, 40};
  EXPECT_EQ(first(values), "Only 7 patches were measured; from 12 on their errors even out.");
  values.measured = test::chart_readings("chart");
  for (std::size_t i = 0; i < 18; ++i)
    values.measured[i] = {values.measured[i][1], values.measured[i][1], values.measured[i][1] + 1};
  EXPECT_EQ(first(values).find("The patches are nearly of one color"), 0u);

  values.measured = {};
  EXPECT_TRUE(matrix_warnings(values).empty());
  values.coefficients[1] = {5, -4, 0};
  EXPECT_EQ(first(values), "G from R is 5120: 13 bits hold -4096 to 4095, so it wraps.");
  EXPECT_EQ(matrix_warnings(values).at(1), "Green makes noise 6.4 times as large.");
  values.measured = test::chart_readings("chart");
  EXPECT_NE(matrix_warnings(values).back().find("The mean color difference grows from "), std::string::npos);
}
