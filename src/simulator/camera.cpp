#include "simulator/camera.h"

#include <algorithm>
#include <cmath>

namespace qv5123 {
namespace {

/// Counts of white in green light alone, with the amplifier at 1.
constexpr double kSensitivity = 150;
constexpr double kDistanceUnit = 2048;

/// Of a lens that falls off by cos^4: how far behind it the picture lies for each colour, pixels.
constexpr double kFocalLength[] = {2350, 2400, 2300};
/// What its rim hides of the light at kRim pixels from the centre, growing with the sixth power.
constexpr double kHidden = 0.45;
constexpr double kRim = 1100;

/// Stray light, as a share of that of a white surface.
constexpr double kFlare = 0.025;
/// The largest difference between what the sensor and the eye see of a patch.
constexpr double kMetamerism = 0.04;
/// Patches from here on are grey: their spectra are flat, and nobody sees them differently.
constexpr std::size_t kFirstGreyPatch = 18;

constexpr double kBright = 1.8;
constexpr double kDark = 0.125;

struct Noise {
  double read;
  double shot;
};
/// By kNoiseNames.
constexpr Noise kNoises[] = {{0, 0}, {0.8, 0.02}, {2.5, 0.12}};

/// Mixes all bits of `value` (the finalizer of splitmix64).
std::uint64_t scrambled(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15u;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
  return value ^ (value >> 31);
}

/// A number of mean 0 and variance 1 that is nearly normally distributed: the sum of four even ones.
double bell_shaped(std::uint64_t bits) {
  constexpr double kUnit = 65536;
  double sum = 0;
  for (int part = 0; part < 4; ++part) sum += static_cast<double>(bits >> (16 * part) & 0xFFFF) / kUnit;
  return (sum - 2) * std::sqrt(3.0);
}

/// The sensor's answer to a colour of a patch beside what it would be without metamerism: the same for ever,
/// anywhere in 1 +- kMetamerism.
double metameric(std::size_t patch, std::size_t colour) {
  if (patch >= kFirstGreyPatch) return 1;
  const double share = static_cast<double>(scrambled(patch * 3 + colour) >> 11) / 9007199254740992.0;
  return 1 + kMetamerism * (2 * share - 1);
}

double power4(double x) {
  return x * x * x * x;
}

}  // namespace

bool set_noise(CameraTruth& truth, std::string_view name) {
  for (std::size_t i = 0; i < kNoiseNames.size(); ++i) {
    if (name != kNoiseNames[i]) continue;
    truth.read_noise = kNoises[i].read;
    truth.shot_noise = kNoises[i].shot;
    return true;
  }
  return false;
}

std::string_view noise_name(const CameraTruth& truth) {
  for (std::size_t i = 0; i < kNoiseNames.size(); ++i) {
    if (truth.read_noise == kNoises[i].read && truth.shot_noise == kNoises[i].shot) return kNoiseNames[i];
  }
  return {};
}

Camera::Camera(const Scene& scene, const CameraTruth& truth)
    : scene_(scene),
      truth_(truth),
      pose_(scene),
      illuminant_(lamp_light(scene.has(Trait::warm) ? kWarmLamp : truth.lamp)) {}

double Camera::overexposure() const {
  return (scene_.has(Trait::bright) ? kBright : 1) * (scene_.has(Trait::dark) ? kDark : 1);
}

PicturePoint Camera::lens_centre() const {
  return {scene_.width / 2 + truth_.decentring.x, scene_.height / 2 + truth_.decentring.y};
}

double Camera::transmission(int x, int y, std::size_t colour) const {
  PicturePoint centre = lens_centre();
  if (!scene_.has_other_lens()) {
    const double dx = (x - centre.x) / kDistanceUnit;
    const double dy = (y - centre.y) / kDistanceUnit;
    const double d2 = dx * dx + dy * dy;
    return 1 / (1 + truth_.fall_off_a[colour] * d2 + truth_.fall_off_b[colour] * d2 * d2);
  }
  centre.x += truth_.colour_decentring[colour].x;
  centre.y += truth_.colour_decentring[colour].y;
  const double dx = x - centre.x;
  const double dy = y - centre.y;
  const double d2 = dx * dx + dy * dy;
  const double focal = kFocalLength[colour];
  const double through = 1 / power4(std::sqrt(1 + d2 / (focal * focal)));
  if (!scene_.has(Trait::steep)) return through;
  const double rim = d2 / (kRim * kRim);
  return through / (1 + kHidden * rim * rim * rim);
}

Light Camera::sensed(int x, int y) const {
  const Light light = scene_light(scene_, pose_, x, y);
  Light sensed{};
  for (std::size_t c = 0; c < 3; ++c) {
    for (std::size_t j = 0; j < 3; ++j) sensed[c] += truth_.crosstalk[c][j] * illuminant_[j] * light[j];
  }
  if (!scene_.has(Trait::metameric) || scene_.kind != Scene::Kind::chart) return sensed;
  const auto patch = pose_.patch_at(x, y);
  for (std::size_t c = 0; c < 3 && patch; ++c) sensed[c] *= metameric(*patch, c);
  return sensed;
}

Light Camera::signal(int x, int y, double gain) const {
  Light signal = sensed(x, y);
  for (std::size_t c = 0; c < 3; ++c) {
    signal[c] *= transmission(x, y, c);
    // Stray light comes from everywhere, so the lens does not dim it towards the edges.
    for (std::size_t j = 0; j < 3 && scene_.has(Trait::flare); ++j)
      signal[c] += kFlare * truth_.crosstalk[c][j] * illuminant_[j];
    signal[c] *= kSensitivity * gain;
  }
  return signal;
}

Light Camera::raw(int x, int y, double gain) const {
  Light raw = signal(x, y, gain);
  for (std::size_t c = 0; c < 3; ++c) raw[c] = std::clamp(raw[c] + noise(x, y, c, raw[c]), 0.0, kFullScale);
  return raw;
}

double Camera::noise(int x, int y, std::size_t colour, double level) const {
  const double variance = truth_.read_noise * truth_.read_noise + truth_.shot_noise * std::max(level, 0.0);
  if (variance <= 0) return 0;
  const auto place =
      static_cast<std::uint64_t>(static_cast<std::uint32_t>(y)) << 32 | static_cast<std::uint32_t>(x);
  const std::uint64_t bits = scrambled(scrambled(truth_.seed * 3 + colour) ^ place);
  return bell_shaped(bits) * std::sqrt(variance);
}

}  // namespace qv5123
