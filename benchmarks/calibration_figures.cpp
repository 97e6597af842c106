// How close the pages' calibrations come to the truth of a simulated camera: the rows of docs/calibration.md,
// each with its bound, which leaves a little room above the worst of all seeds.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "support/chip_talk.h"
#include "support/fake_wire.h"
#include "tuning/lens_calibration.h"
#include "tuning/matrix_desk.h"
#include "tuning/matrix_fit.h"
#include "tuning/patch_report.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

/// A chip with a camera whose truth is known, and the pages' calibrations over the line to it.
struct CalibrationBench {
  CalibrationBench(const Scene& scene, const CameraTruth& truth) {
    chip.set_camera(Camera(scene, truth));
    wire.sender.chip = [this](const std::string& bytes) { wire.receive(test::ask(chip, bytes)); };
    lens.screen_index = scene.height == 720 ? 1 : 0;
  }

  const LensCalibrationResult& calibrate_lens_shading() {
    run(lens_flow());
    return lens_result;
  }
  /// As a user does it: the cursor on the first patch, "GET COLOR" for each, "Calculate", the three "Set".
  MatrixResult calibrate_matrix() {
    run(matrix_flow());
    return matrix_result;
  }
  /// What the picker says of the picture at `point` with all corrections on.
  PerColour picked(PicturePoint point) {
    PerColour colour{};
    run(pick(point, colour));
    return colour;
  }
  /// CIEDE2000 of all patches as the picker reads them off the picture, exposed so that the greys' greens
  /// match.
  DifferenceSummary closed_loop() {
    std::array<PerColour, kPatches> read{};
    for (std::size_t i = 0; i < kPatches; ++i) read[i] = picked(patch_middle(chip.camera()->scene(), i));
    double counts = 0, reference = 0;
    for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) {
      counts += read[i][1];
      reference += kPatchReferences[i][1];
    }
    DifferenceSummary result;
    for (std::size_t i = 0; i < kPatches; ++i) {
      LinearRgb colour{};
      for (std::size_t c = 0; c < 3; ++c) colour[c] = read[i][c] * reference / counts;
      const double difference = ciede2000(lab_of(colour), lab_of(kPatchReferences[i]));
      result.mean += difference / kPatches;
      result.worst = std::max(result.worst, difference);
    }
    return result;
  }

  test::FakeWire wire;
  test::ListeningChip chip;
  LensValues lens;
  LensCalibrationResult lens_result;
  MatrixValues matrix;
  MatrixResult matrix_result = MatrixResult::no_grey;

 private:
  void run(Task<> task) {
    const Flow flow(std::move(task));
    while (flow.running()) wire.advance(100);
  }
  Task<> lens_flow() {
    co_await switch_lens_picker(wire.link, lens, true);
    std::function<void(const LensSample&)> ignore = [](const LensSample&) {};
    lens_result = co_await calibrate_lens(wire.link, lens, std::move(ignore));
  }
  Task<> matrix_flow() {
    const PicturePoint first = patch_middle(chip.camera()->scene(), 0);
    matrix.picker = {first.x, first.y};
    matrix.patch_step = patch_pitch(chip.camera()->scene());
    co_await switch_matrix_picker(wire.link, matrix, true);
    for (std::size_t i = 0; i < kPatches; ++i) co_await get_patch_color(wire.link, matrix, matrix.patch);
    matrix_result = calculate_matrix(matrix);
    for (int row = 0; row < kMatrixRows; ++row) {
      set_matrix_rows(matrix);
      Traffic traffic = matrix_send_row(matrix, row);
      co_await wire.link.send(std::move(traffic));
    }
    co_await switch_matrix_picker(wire.link, matrix, false);
  }
  Task<> pick(PicturePoint point, PerColour& colour) {
    co_await wire.link.wide_write(picker_register::kEnable, 0x81);
    IspBytes position = picker_position_bytes({point.x, point.y});
    co_await write_isp_bytes(wire.link, std::move(position));
    colour = co_await read_picker(wire.link);
  }
};

constexpr std::uint64_t kSeeds = 8;

CameraTruth truth_of(bool noise, std::uint64_t seed) {
  CameraTruth truth;
  truth.seed = seed;
  if (!noise) truth.read_noise = truth.shot_noise = 0;
  return truth;
}

/// How far the fitted gains are from the true ones along the line, in percent; the worst of the three
/// colours.
double gain_error(const LensValues& lens, const Camera& camera) {
  double worst = 0;
  for (int x = 0; x < camera.scene().width; x += 8) {
    const double d2 = std::pow((x - camera.lens_centre().x) / 2048.0, 2);
    for (std::size_t c = 0; c < 3; ++c) {
      const double truth = 1 + camera.truth().fall_off_a[c] * d2 + camera.truth().fall_off_b[c] * d2 * d2;
      const double fitted = lens_gain(lens.parameter1[c], lens.parameter2[c], x, camera.lens_centre().x);
      worst = std::max(worst, 100 * std::abs(fitted / truth - 1));
    }
  }
  return worst;
}

/// Largest over smallest reading of a colour over the field, in percent; the worst of the three.
double ripple(CalibrationBench& bench, const Scene& scene) {
  PerColour low{255, 255, 255};
  PerColour high{};
  for (int row = 0; row < 5; ++row) {
    for (int column = 0; column < 9; ++column) {
      const PerColour colour =
          bench.picked({16 + column * (scene.width - 32) / 8, 16 + row * (scene.height - 32) / 4});
      for (std::size_t c = 0; c < 3; ++c) {
        low[c] = std::min(low[c], colour[c]);
        high[c] = std::max(high[c], colour[c]);
      }
    }
  }
  double worst = 0;
  for (std::size_t c = 0; c < 3; ++c) worst = std::max(worst, 100.0 * (high[c] - low[c]) / low[c]);
  return worst;
}

/// Over the adjugate, so that it shares nothing with the solver under test.
ColourMatrix inverse(const ColourMatrix& m) {
  ColourMatrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const auto at = [&](std::size_t row, std::size_t column) { return m[(j + row) % 3][(i + column) % 3]; };
      result[i][j] = at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1);
    }
  }
  const double determinant = m[0][0] * result[0][0] + m[0][1] * result[1][0] + m[0][2] * result[2][0];
  for (auto& row : result)
    for (double& element : row) element /= determinant;
  return result;
}

/// The matrix that undoes the crosstalk of white balanced colours, its rows summing to 1.
ColourMatrix true_matrix(const Camera& camera) {
  ColourMatrix seen = camera.truth().crosstalk;
  for (auto& row : seen) {
    double grey = 0;
    for (std::size_t j = 0; j < 3; ++j) grey += row[j] *= camera.illuminant()[j];
    for (double& element : row) element /= grey;
  }
  return inverse(seen);
}

double largest_error(const Coefficients& fitted, const ColourMatrix& truth) {
  double largest = 0;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t j = 0; j < 3; ++j) largest = std::max(largest, std::abs(fitted[r][j] - truth[r][j]));
  }
  return largest;
}

const char* met(bool within) {
  return within ? "" : "  MISSED";
}

void print_scene(const Scene& scene, bool noise, std::uint64_t seed) {
  std::printf("%s %s seed %d:", scene_name(scene).c_str(), noise ? "noise" : "quiet", static_cast<int>(seed));
}

void measure_lens(const Scene& scene, bool noise, std::uint64_t seed) {
  const CameraTruth truth = truth_of(noise, seed);
  const bool small = scene.height == 720;
  CalibrationBench bench(scene, truth);
  const double before = ripple(bench, scene);
  const LensCalibration& found = bench.calibrate_lens_shading().calibration;
  const double after = ripple(bench, scene);
  const int centre = found.centre.x - bench.chip.camera()->lens_centre().x;
  const double gain = gain_error(bench.lens, *bench.chip.camera());
  bool within = std::abs(centre) <= 4 && gain <= 2 && after <= (small ? 2.5 : 3.5);
  print_scene(scene, noise, seed);
  std::printf(" centre %+d  gain +-%.2f %%  ripple %.1f %% -> %.1f %%", centre, gain, before, after);
  for (std::size_t c = 0; c < 3; ++c) {
    const double a = found.fit.a[c] - truth.fall_off_a[c];
    const double b = found.fit.b[c] - truth.fall_off_b[c];
    // The short line of 720p says next to nothing about the second parameter.
    within = within && std::abs(a) <= (small ? 0.40 : 0.30) && (small || std::abs(b) <= 1.25);
    std::printf("  a %+.2f b %+.2f", a, b);
  }
  std::printf("%s\n", met(within));
}

void measure_matrix(const Scene& scene, bool noise, std::uint64_t seed) {
  const CameraTruth truth = truth_of(noise, seed);
  Scene field = scene;
  field.kind = Scene::Kind::flat;
  CalibrationBench bench(field, truth);
  bench.calibrate_lens_shading();
  bench.chip.set_camera(Camera(scene, truth));
  const DifferenceSummary before = bench.closed_loop();
  bench.calibrate_matrix();
  const DifferenceSummary after = bench.closed_loop();
  const double error = largest_error(bench.matrix.coefficients, true_matrix(*bench.chip.camera()));
  const PatchReport page =
      patch_report(bench.matrix.measured, bench.matrix.coefficients).value_or(PatchReport{});
  const bool within = error <= 0.035 && page.after.mean <= 1.3 && page.after.worst <= 7.5 &&
                      after.mean <= 0.75 && after.worst <= 3;
  print_scene(scene, noise, seed);
  std::printf(" matrix +-%.3f  page %.2f (%.1f) -> %.2f (%.1f)  picture %.2f (%.1f) -> %.2f (%.1f)%s\n",
              error, page.before.mean, page.before.worst, page.after.mean, page.after.worst, before.mean,
              before.worst, after.mean, after.worst, met(within));
}

void measure_all(void (*measure)(const Scene&, bool, std::uint64_t), const char* large, const char* small) {
  for (const bool noise : {false, true}) {
    for (std::uint64_t seed = 1; seed <= (noise ? kSeeds : 1); ++seed) {
      measure(*scene_named(large), noise, seed);
      measure(*scene_named(small), noise, seed);
    }
  }
}

}  // namespace
}  // namespace qv5123

int main() {
  qv5123::measure_all(qv5123::measure_lens, "flat", "flat-720");
  qv5123::measure_all(qv5123::measure_matrix, "chart", "chart-720");
}
