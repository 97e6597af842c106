#include "simulator/picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace qv5123 {
namespace {

constexpr double kDistanceUnit = 2048;
constexpr double kLargest = 255;

/// Where a square of `edge` pixels around `middle` starts, so that it lies inside 0..size.
int square_start(int middle, int edge, int size) {
  return std::clamp(middle - edge / 2, 0, std::max(size - edge, 0));
}

/// The mean over the picker's square of what `colour_at` says for each pixel, in counts.
template <class ColourAt>
PictureColour square_mean(const Camera& camera, const PictureSettings& settings, ColourAt colour_at) {
  const int edge = settings.picker_edge;
  const int left = square_start(settings.cursor.x, edge, camera.scene().width);
  const int top = square_start(settings.cursor.y, edge, camera.scene().height);
  Light sum{};
  for (int y = top; y < top + edge; ++y) {
    for (int x = left; x < left + edge; ++x) {
      const PictureColour pixel = colour_at(x, y);
      for (std::size_t c = 0; c < 3; ++c) sum[c] += pixel[c];
    }
  }
  for (double& part : sum) part /= static_cast<double>(edge) * edge;
  return in_counts(sum);
}

}  // namespace

Light shading_gain(const PictureSettings& settings, int x, int y) {
  const double dx = (x - settings.shading_centre.x) / kDistanceUnit;
  const double dy = (y - settings.shading_centre.y) / kDistanceUnit;
  const double d2 = dx * dx + dy * dy;
  Light gain{};
  for (std::size_t c = 0; c < 3; ++c) {
    gain[c] = std::max(0.0, 1 + settings.shading_p1[c] * d2 - settings.shading_p2[c] * d2 * d2);
  }
  return gain;
}

Light corrected_raw(const Camera& camera, const PictureSettings& settings, int x, int y) {
  Light colour = camera.raw(x, y, settings.gain);
  if (!settings.shading) return colour;
  const Light gain = shading_gain(settings, x, y);
  for (std::size_t c = 0; c < 3; ++c) colour[c] *= gain[c];
  return colour;
}

Light processed(const PictureSettings& settings, const Light& colour) {
  Light balanced{};
  for (std::size_t c = 0; c < 3; ++c) {
    balanced[c] = std::min(colour[c] * settings.white_balance[c], kLargest);
  }
  if (!settings.colour_processing) return balanced;
  Light mixed{};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t j = 0; j < 3; ++j) mixed[r] += settings.matrix[r][j] * balanced[j];
  }
  return mixed;
}

PictureColour in_counts(const Light& colour) {
  PictureColour counts{};
  for (std::size_t c = 0; c < 3; ++c) {
    counts[c] = static_cast<std::uint8_t>(std::lround(std::clamp(colour[c], 0.0, kLargest)));
  }
  return counts;
}

PictureColour picker_colour(const Camera& camera, const PictureSettings& settings) {
  PictureSettings measuring = settings;
  measuring.shading = settings.shading && settings.picker_behind_shading;
  return square_mean(camera, settings, [&](int x, int y) {
    return in_counts(processed(measuring, corrected_raw(camera, measuring, x, y)));
  });
}

PictureColour raw_colour(const Camera& camera, const PictureSettings& settings) {
  return square_mean(camera, settings,
                     [&](int x, int y) { return in_counts(corrected_raw(camera, settings, x, y)); });
}

}  // namespace qv5123
