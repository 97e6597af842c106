#pragma once

#include <algorithm>

#include "simulator/picture.h"
#include "tuning/matrix.h"

namespace qv5123::test {

/// What a picker reads off the chart of a scene, the lens undone, with white at 205 counts where the scene is
/// exposed rightly.
inline MeasuredColours chart_readings(const char* scene_name, const char* noise = "off",
                                      std::uint64_t seed = 1) {
  const Scene scene = *scene_named(scene_name);
  CameraTruth truth;
  truth.seed = seed;
  set_noise(truth, noise);
  // The picker's square evens the noise out.
  const int edge = noise_name(truth) == "off" ? 1 : 16;
  const Camera camera(scene, truth);
  const PicturePoint white = patch_middle(scene, 18);
  const Light whole = camera.signal(white.x, white.y, 1);
  const double gain = 205 * camera.overexposure() / *std::ranges::max_element(whole);
  MeasuredColours measured{};
  for (std::size_t i = 0; i < kPatches; ++i) {
    const PicturePoint middle = patch_middle(scene, i);
    Light sum{};
    for (int at = 0; at < edge * edge; ++at) {
      const Light raw = camera.raw(middle.x + at % edge - edge / 2, middle.y + at / edge - edge / 2, gain);
      for (std::size_t c = 0; c < 3; ++c) sum[c] += raw[c];
    }
    for (std::size_t c = 0; c < 3; ++c) {
      const double level = sum[c] / (edge * edge) / camera.transmission(middle.x, middle.y, c);
      measured[i][c] = static_cast<std::uint32_t>(std::min(level, 255.0) + 0.5);
    }
  }
  return measured;
}

}  // namespace qv5123::test
