#pragma once

#include <algorithm>

#include "simulator/picture.h"
#include "tuning/matrix.h"

namespace qv5123::test {

/// What a picker reads off the chart of a scene, the lens undone, with white at 205 counts where the scene is
/// exposed rightly. Without noise.
inline MeasuredColours chart_readings(const char* scene_name) {
  const Scene scene = *scene_named(scene_name);
  CameraTruth truth;
  set_noise(truth, "off");
  const Camera camera(scene, truth);
  const PicturePoint white = patch_middle(scene, 18);
  const Light whole = camera.signal(white.x, white.y, 1);
  const double gain = 205 * camera.overexposure() / *std::ranges::max_element(whole);
  MeasuredColours measured{};
  for (std::size_t i = 0; i < kPatches; ++i) {
    const PicturePoint middle = patch_middle(scene, i);
    const Light signal = camera.raw(middle.x, middle.y, gain);
    for (std::size_t c = 0; c < 3; ++c) {
      const double level = signal[c] / camera.transmission(middle.x, middle.y, c);
      measured[i][c] = static_cast<std::uint32_t>(std::min(level, 255.0) + 0.5);
    }
  }
  return measured;
}

}  // namespace qv5123::test
