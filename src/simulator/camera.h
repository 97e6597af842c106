#pragma once

#include <array>
#include <cstdint>

#include "simulator/scene.h"

namespace qv5123 {

/// By row (output) and column (input).
using ColourMatrix = std::array<std::array<double, 3>, 3>;

/// What stands between the scene and the sensor's signal: the truth that calibrations are to find.
struct CameraTruth {
  /// Light of a lamp at about 4100 K, green 1.
  Light illuminant{1.05, 1.0, 0.55};
  /// What each colour's pixels take from each colour of the light.
  ColourMatrix crosstalk{{{0.78, 0.17, 0.05}, {0.12, 0.75, 0.13}, {0.04, 0.23, 0.73}}};
  /// The lens lets through 1 / (1 + a d^2 + b d^4), with d = pixels from its centre / 2048.
  std::array<double, 3> fall_off_a{1.05, 0.95, 1.15};
  std::array<double, 3> fall_off_b{-1.2, -1.1, -1.3};
  /// The lens's centre, right of and below that of the picture, in pixels.
  PicturePoint decentring{13, 8};
  /// Variance of the noise in counts: `read_noise`^2 + `shot_noise` x level. Both 0: a picture without noise.
  double read_noise = 0.8;
  double shot_noise = 0.02;
  /// The same seed makes the same noise.
  std::uint64_t seed = 1;
  friend bool operator==(const CameraTruth&, const CameraTruth&) = default;
};

/// The camera in front of the simulated chip. Each pixel is computed when it is asked for, always to the
/// same value.
class Camera {
 public:
  static constexpr double kFullScale = 255;  ///< counts at which the sensor saturates

  explicit Camera(const Scene& scene, const CameraTruth& truth = {}) : scene_(scene), truth_(truth) {}

  const Scene& scene() const { return scene_; }
  const CameraTruth& truth() const { return truth_; }
  PicturePoint lens_centre() const;

  /// The sensor's signal in counts with the amplifier at `gain`, before the noise and without an upper end.
  Light signal(int x, int y, double gain) const;
  /// The same with noise, 0..kFullScale.
  Light raw(int x, int y, double gain) const;

  friend bool operator==(const Camera&, const Camera&) = default;

 private:
  double noise(int x, int y, std::size_t colour, double level) const;

  Scene scene_;
  CameraTruth truth_;
};

}  // namespace qv5123
