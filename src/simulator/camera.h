#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "simulator/scene.h"

namespace qv5123 {

/// By row (output) and column (input).
using ColourMatrix = std::array<std::array<double, 3>, 3>;

/// What stands between the scene and the sensor's signal: the truth that calibrations are to find.
struct CameraTruth {
  /// The lamp's colour temperature, kelvin, see lamp_light(). A warm scene has a lamp of its own.
  int lamp = kUsualLamp;
  /// What each colour's pixels take from each colour of the light.
  ColourMatrix crosstalk{{{0.78, 0.17, 0.05}, {0.12, 0.75, 0.13}, {0.04, 0.23, 0.73}}};
  /// The lens lets through 1 / (1 + a d^2 + b d^4), with d = pixels from its centre / 2048, unless the scene
  /// is seen through another.
  std::array<double, 3> fall_off_a{1.05, 0.95, 1.15};
  std::array<double, 3> fall_off_b{-1.2, -1.1, -1.3};
  /// The lens's centre, right of and below that of the picture, in pixels.
  PicturePoint decentring{13, 8};
  /// How far another lens's centre for red, green and blue is from there, as the camera module does not know.
  std::array<PicturePoint, 3> colour_decentring{{{-14, 9}, {3, -2}, {17, -11}}};
  /// Variance of the noise in counts: `read_noise`^2 + `shot_noise` x level. Both 0: a picture without noise.
  double read_noise = 0.8;
  double shot_noise = 0.02;
  /// The same seed makes the same noise.
  std::uint64_t seed = 1;
  friend bool operator==(const CameraTruth&, const CameraTruth&) = default;
};

/// The noises that a camera may have, by name. "low" is the usual one.
inline constexpr std::array<const char*, 3> kNoiseNames = {"off", "low", "high"};
/// Gives `truth` the noise of this name. False, and nothing has changed, when there is none.
bool set_noise(CameraTruth& truth, std::string_view name);
/// The name of the noise that `truth` has; empty where it is none of them.
std::string_view noise_name(const CameraTruth& truth);

/// The camera in front of the simulated chip. Each pixel is computed when it is asked for, always to the
/// same value.
class Camera {
 public:
  static constexpr double kFullScale = 255;  ///< counts at which the sensor saturates

  explicit Camera(const Scene& scene, const CameraTruth& truth = {});

  const Scene& scene() const { return scene_; }
  const CameraTruth& truth() const { return truth_; }
  PicturePoint lens_centre() const;
  /// How many times brighter than it is told to the chip exposes.
  double overexposure() const;
  /// The share of a colour, 0..2, that the lens lets through at a pixel, 0..1.
  double transmission(int x, int y, std::size_t colour) const;

  /// The sensor's signal in counts with the amplifier at `gain`, before the noise and without an upper end.
  Light signal(int x, int y, double gain) const;
  /// The same with noise, 0..kFullScale.
  Light raw(int x, int y, double gain) const;

  friend bool operator==(const Camera&, const Camera&) = default;

 private:
  double noise(int x, int y, std::size_t colour, double level) const;
  /// What the sensor makes of the light from a place on the scene, green of white 1.
  Light sensed(int x, int y) const;

  Scene scene_;
  CameraTruth truth_;
  ChartPose pose_;
  Light illuminant_;
};

}  // namespace qv5123
