// How close the pages' calibrations come to the truth of a simulated camera: writes docs/calibration.md, on
// the standard output or into the file that is named.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>

#include "base/text.h"
#include "calibration_text.h"
#include "support/chip_talk.h"
#include "support/fake_wire.h"
#include "support/patch_fits.h"
#include "tuning/color_fit.h"
#include "tuning/lens_calibration.h"
#include "tuning/matrix_desk.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

constexpr std::uint64_t kSeeds = 8;

/// A chip with a camera whose truth is known, and the pages' calibrations over the line to it.
struct CalibrationBench {
  CalibrationBench(const Scene& scene, const CameraTruth& truth) {
    chip.set_camera(Camera(scene, truth));
    wire.sender.chip = [this](const std::string& bytes) { wire.receive(test::ask(chip, bytes)); };
    lens.screen_index = scene.height == 720 ? 1 : 0;
  }

  void send_lens(const PerColour& parameter1, const PerColour& parameter2) {
    lens.parameter1 = parameter1;
    lens.parameter2 = parameter2;
    run(send_parameters());
  }
  void calibrate_lens_shading(LensDecision decision) { run(lens_flow(decision)); }
  /// As "Check field" does it: the worst colour's ripple.
  double ripple() {
    LensField field;
    run(field_flow(field));
    const auto ripple = field_ripple(field);
    return *std::ranges::max_element(ripple);
  }
  /// "GET COLOR" on all patches.
  MeasuredColours measure() {
    run(matrix_flow());
    return matrix.measured;
  }

  test::FakeWire wire;
  test::ListeningChip chip;
  LensValues lens;
  LensCalibrationResult lens_result;
  MatrixValues matrix;

 private:
  void run(Task<> task) {
    const Flow flow(std::move(task));
    while (flow.running()) wire.advance(100);
  }
  Task<> send_parameters() {
    for (Batch& batch : lens_send_parameters(lens)) co_await wire.link.send(std::move(batch));
  }
  Task<> lens_flow(LensDecision decision) {
    co_await switch_lens_picker(wire.link, lens, true);
    std::function<void(const LensSample&)> ignore = [](const LensSample&) {};
    std::function<Task<LensDecision>(const LensCalibration&)> decide =
        [decision](const LensCalibration& found) -> Task<LensDecision> {
      co_return second_parameter_clamped(found) ? decision : LensDecision::send;
    };
    lens_result = co_await calibrate_lens(wire.link, lens, std::move(ignore), std::move(decide));
  }
  Task<> field_flow(LensField& field) {
    std::function<bool(const PerColour&)> take = [&](const PerColour& colour) {
      field.push_back(colour);
      return true;
    };
    std::vector<PickerPosition> positions = field_positions(lens.screen_index);
    co_await check_field(wire.link, lens, std::move(positions), std::move(take));
  }
  Task<> matrix_flow() {
    co_await switch_matrix_picker(wire.link, matrix, true);
    for (std::size_t i = 0; i < kPatches; ++i) {
      const PicturePoint middle = patch_middle(chip.camera()->scene(), i);
      IspBytes position = picker_position_bytes({middle.x, middle.y});
      co_await move_picker(wire.link, std::move(position));
      co_await get_patch_color(wire.link, matrix, i);
    }
    co_await switch_matrix_picker(wire.link, matrix, false);
  }
};

CameraTruth truth_of(const char* noise, std::uint64_t seed) {
  CameraTruth truth;
  truth.seed = seed;
  set_noise(truth, noise);
  return truth;
}

/// The mean over the seeds; without noise there is one.
double over_seeds(const char* noise, const std::function<double(std::uint64_t)>& figure) {
  const std::uint64_t seeds = std::string(noise) == "off" ? 1 : kSeeds;
  double sum = 0;
  for (std::uint64_t seed = 1; seed <= seeds; ++seed) sum += figure(seed);
  return sum / static_cast<double>(seeds);
}

std::string row(const std::vector<std::string>& cells) {
  std::string text = "|";
  for (const std::string& cell : cells) text += " " + cell + " |";
  return text + "\n";
}

// Lens

/// The least ripple over the places of "Check field" that two parameters of 0 and above can leave, without
/// noise.
double best_ripple(const Scene& scene, std::size_t colour) {
  const Camera camera(scene, truth_of("off", 1));
  const auto places = field_positions(scene.height == 720 ? 1 : 0);
  const auto ripple = [&](double p1, double p2) {
    double low = 1e9, high = 0;
    for (const PickerPosition& place : places) {
      const double dx = (place.x - camera.lens_centre().x) / 2048.0,
                   dy = (place.y - camera.lens_centre().y) / 2048.0;
      const double d2 = dx * dx + dy * dy;
      const double level = camera.signal(place.x, place.y, 1)[colour] * (1 + p1 * d2 - p2 * d2 * d2);
      low = std::min(low, level);
      high = std::max(high, level);
    }
    return 100 * (high / low - 1);
  };
  double best = 1e9;
  for (double p1 = 0; p1 < 4; p1 += 0.02)
    for (double p2 = 0; p2 < 4; p2 += 0.04) best = std::min(best, ripple(p1, p2));
  return best;
}

double field_after(const Scene& scene, const char* noise, std::uint64_t seed,
                   std::optional<LensDecision> decision) {
  CalibrationBench bench(scene, truth_of(noise, seed));
  bench.send_lens({}, {});
  if (decision) bench.calibrate_lens_shading(*decision);
  return bench.ripple();
}

std::string lens_rows(const char* name) {
  const Scene scene = *scene_named(name);
  const double best = std::max({best_ripple(scene, 0), best_ripple(scene, 1), best_ripple(scene, 2)});
  std::string rows;
  for (const char* noise : kNoiseNames) {
    const auto after = [&](std::optional<LensDecision> decision) {
      return fixed(
          over_seeds(noise, [&](std::uint64_t seed) { return field_after(scene, noise, seed, decision); }),
          1);
    };
    rows += row({"`" + std::string(name) + "`", noise, after({}), after(LensDecision::send),
                 after(LensDecision::send_first_alone), fixed(best, 1)});
  }
  return rows;
}

// Matrix

using Matrix = std::array<double, 9>;

/// A set of colours as they come, and as they should.
struct Pairs {
  std::vector<LinearRgb> from;
  std::vector<Lab> to;
};

double mean_difference(const Pairs& pairs, const Matrix& m) {
  double sum = 0;
  for (std::size_t i = 0; i < pairs.from.size(); ++i) {
    const LinearRgb& c = pairs.from[i];
    sum += ciede2000(pairs.to[i],
                     lab_of({m[0] * c[0] + m[1] * c[1] + m[2] * c[2], m[3] * c[0] + m[4] * c[1] + m[5] * c[2],
                             m[6] * c[0] + m[7] * c[1] + m[8] * c[2]}));
  }
  return sum / static_cast<double>(pairs.from.size());
}

double mean_difference(const Pairs& pairs, const Coefficients& matrix) {
  const Coefficients held = as_registers_hold(matrix);
  Matrix m{};
  for (std::size_t i = 0; i < m.size(); ++i) m[i] = held[i / 3][i % 3];
  return mean_difference(pairs, m);
}

/// Walks downhill from `start`, a pair of elements at a time: no code, no row sum, no limit.
double best_of_any_matrix(const Pairs& pairs, const Coefficients& start) {
  Matrix best{};
  for (std::size_t i = 0; i < best.size(); ++i) best[i] = start[i / 3][i % 3];
  double least = mean_difference(pairs, best);
  for (double step = 0.05; step > 0.0005;) {
    bool found = false;
    for (std::size_t i = 0; i < 9; ++i) {
      for (std::size_t j = 0; j < 9; ++j) {
        for (const auto& [a, b] : {std::pair{1, 1}, {1, -1}, {-1, 1}, {-1, -1}}) {
          Matrix next = best;
          next[i] += a * step;
          if (j != i) next[j] += b * step;
          const double now = mean_difference(pairs, next);
          if (now >= least) continue;
          best = next;
          least = now;
          found = true;
        }
      }
    }
    if (!found) step /= 2;
  }
  return least;
}

/// What the sensor sees of the patches without noise and lens, balanced and exposed by the four greys, beside
/// what stands there.
Pairs truth_pairs(const Scene& scene) {
  const Camera camera(scene, truth_of("off", 1));
  std::array<LinearRgb, kPatches> seen{};
  LinearRgb seen_sum{}, true_sum{};
  for (std::size_t i = 0; i < kPatches; ++i) {
    const PicturePoint middle = patch_middle(scene, i);
    seen[i] = camera.signal(middle.x, middle.y, 1);
    for (std::size_t c = 0; c < 3; ++c) {
      seen[i][c] /= camera.transmission(middle.x, middle.y, c);
      if (i < kFirstGrey || i > kLastGrey) continue;
      seen_sum[c] += seen[i][c];
      true_sum[c] += chart_colours()[i][c];
    }
  }
  Pairs pairs;
  for (std::size_t i = 0; i < kPatches; ++i) {
    for (std::size_t c = 0; c < 3; ++c) seen[i][c] *= true_sum[1] / seen_sum[c];
    pairs.from.push_back(seen[i]);
    pairs.to.push_back(lab_of(chart_colours()[i]));
  }
  return pairs;
}

Coefficients no_matrix(const MeasuredColours&, const ExposedPatches&) {
  return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
}

struct Figures {
  double fitted = 0;
  double left_out = 0;
  double truth = 0;
};
Figures figures_of(const MeasuredColours& measured, const Pairs& truth, test::PatchFit fit) {
  const ExposedPatches patches = *exact_patches(measured);
  const Coefficients whole = fit(measured, patches);
  return {test::mean_difference(patches, whole), test::mean_left_out(measured, fit),
          mean_difference(truth, whole)};
}

MeasuredColours readings(const Scene& scene, const char* noise, std::uint64_t seed) {
  Scene field = scene;
  field.kind = Scene::Kind::flat;
  // Whoever calibrates the lens lights it evenly and exposes it rightly.
  field.traits &= 1u << static_cast<unsigned>(Trait::cos4) | 1u << static_cast<unsigned>(Trait::steep);
  CalibrationBench bench(field, truth_of(noise, seed));
  bench.calibrate_lens_shading(LensDecision::send_first_alone);
  bench.chip.set_camera(Camera(scene, truth_of(noise, seed)));
  bench.chip.look();
  return bench.measure();
}

std::string matrix_rows(const char* name) {
  const Scene scene = *scene_named(name);
  const Pairs truth = truth_pairs(scene);
  std::string rows;
  for (const char* noise : kNoiseNames) {
    constexpr test::PatchFit kFits[] = {no_matrix, test::calculated, test::color_difference};
    std::array<Figures, 3> mean{};
    double best = 0, patches = 0;
    const double seeds = std::string(noise) == "off" ? 1 : kSeeds;
    for (std::uint64_t seed = 1; seed <= static_cast<std::uint64_t>(seeds); ++seed) {
      const MeasuredColours measured = readings(scene, noise, seed);
      patches += static_cast<double>(std::ranges::count_if(measured, is_measured)) / seeds;
      for (std::size_t i = 0; i < mean.size(); ++i) {
        const Figures one = figures_of(measured, truth, kFits[i]);
        mean[i].fitted += one.fitted / seeds;
        mean[i].left_out += one.left_out / seeds;
        mean[i].truth += one.truth / seeds;
      }
      if (seed == 1) best = best_of_any_matrix(truth, *fit_color_difference(measured, {}));
    }
    const auto& [none, calculated, difference] = mean;
    rows += row({"`" + std::string(name) + "`", noise, fixed(patches, 1), fixed(none.fitted, 2),
                 fixed(calculated.fitted, 2), fixed(difference.fitted, 2), fixed(calculated.left_out, 2),
                 fixed(difference.left_out, 2), fixed(none.truth, 2), fixed(calculated.truth, 2),
                 fixed(difference.truth, 2), fixed(best, 2)});
    if (difference.fitted >= calculated.fitted || difference.left_out >= calculated.left_out)
      std::fprintf(stderr, "%s, noise %s: no closer than Calculate\n", name, noise);
  }
  return rows;
}

std::string whole_text() {
  std::string lens;
  for (const char* name : {"flat", "flat-720", "flat-cos4", "flat-cos4-720", "flat-steep", "flat-warm-cos4"})
    lens += lens_rows(name);
  std::string matrix;
  for (const char* name : kSceneNames)
    if (scene_named(name)->kind == Scene::Kind::chart) matrix += matrix_rows(name);
  return std::string(calibration_text::kStart) + lens + calibration_text::kMatrix + matrix +
         calibration_text::kEnd;
}

}  // namespace
}  // namespace qv5123

int main(int argc, char** argv) {
  const std::string text = qv5123::whole_text();
  if (argc < 2) {
    std::cout << text;
    return 0;
  }
  std::ofstream file(argv[1], std::ios::binary);
  file << text;
  return file.flush() ? 0 : 1;
}
