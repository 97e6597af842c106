#include <benchmark/benchmark.h>

#include "tuning/color_fit.h"
#include "tuning/gamma_curve.h"
#include "tuning/lens_fit.h"
#include "tuning/matrix_fit.h"
#include "tuning/patch_report.h"

namespace qv5123 {
namespace {

/// A chart whose colours leak into each other.
MeasuredColours leaking_chart() {
  MeasuredColours measured;
  for (std::size_t i = 0; i < kPatches; ++i) {
    const auto& seen = kPatchReferences[i];
    for (std::size_t c = 0; c < 3; ++c) {
      const double value = 0.7 * seen[c] + 0.2 * seen[(c + 1) % 3] + 0.1 * seen[(c + 2) % 3];
      measured[i][c] = static_cast<std::uint32_t>(200 * value) + 1;
    }
  }
  return measured;
}

std::vector<LensSample> falling_samples() {
  std::vector<LensSample> samples;
  for (const int x : lens_positions(1920)) {
    const double d = (x - 973) / 2048.0;
    const int level = static_cast<int>(200 / (1 + 1.1 * d * d - 1.2 * d * d * d * d));
    samples.push_back(lens_sample(x, {level, level, level}));
  }
  return samples;
}

void matrix_least_squares(benchmark::State& state) {
  const MeasuredColours measured = leaking_chart();
  for (auto _ : state) benchmark::DoNotOptimize(fit_matrix(measured, 100));
}
BENCHMARK(matrix_least_squares)->Unit(benchmark::kMicrosecond);

void color_difference_fit(benchmark::State& state) {
  const MeasuredColours measured = leaking_chart();
  for (auto _ : state) benchmark::DoNotOptimize(fit_color_difference(measured, ColorFitOptions{}));
}
BENCHMARK(color_difference_fit)->Unit(benchmark::kMillisecond);

void patch_colour_differences(benchmark::State& state) {
  const MeasuredColours measured = leaking_chart();
  const Coefficients coefficients = fit_matrix(measured, 100)->coefficients;
  for (auto _ : state) benchmark::DoNotOptimize(patch_report(measured, coefficients));
}
BENCHMARK(patch_colour_differences)->Unit(benchmark::kMicrosecond);

void lens_least_squares(benchmark::State& state) {
  const std::vector<LensSample> samples = falling_samples();
  for (auto _ : state) {
    const LensCentre centre = fit_lens_centre(samples, 1920);
    benchmark::DoNotOptimize(fit_lens(samples, centre, 100));
  }
}
BENCHMARK(lens_least_squares)->Unit(benchmark::kMicrosecond);

void gamma_curve(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(end_gamma_curve(2.2, false, kDefaultFrontGammaLevel));
}
BENCHMARK(gamma_curve)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace qv5123
