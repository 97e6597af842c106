#include "simulator/auto_tasks.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "link/register_write.h"
#include "simulator/picture.h"

namespace qv5123 {
namespace {

constexpr std::size_t kAeTargetEntry = 288;
constexpr double kCountsPerTarget = 9;
constexpr int kGainUnit = 256;
constexpr int kSmallestGain = 16;
constexpr int kLargestSensorGain = 8192;
constexpr int kLargestBalance = 4095;
/// The windows of the statistics across and down.
constexpr int kWindowsAcross = 48;
constexpr int kWindowsDown = 27;

int gain_code(double gain, int largest) {
  if (!(gain > 0)) return kSmallestGain;
  return static_cast<int>(std::lround(std::clamp<double>(gain * kGainUnit, kSmallestGain, largest)));
}

/// The sensor's signal in each window. A window is large, so noise does not show.
std::vector<Light> statistics(const Camera& camera, const PictureSettings& settings) {
  std::vector<Light> windows;
  for (int row = 0; row < kWindowsDown; ++row) {
    for (int column = 0; column < kWindowsAcross; ++column) {
      const int x = (2 * column + 1) * camera.scene().width / (2 * kWindowsAcross);
      const int y = (2 * row + 1) * camera.scene().height / (2 * kWindowsDown);
      Light colour = camera.signal(x, y, settings.gain);
      const Light gain = shading_gain(settings, x, y);
      for (std::size_t c = 0; c < 3; ++c) colour[c] *= settings.shading ? gain[c] : 1;
      windows.push_back(colour);
    }
  }
  return windows;
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void expose(const std::vector<Light>& windows, double gain, double overexposure, ChipState& chip) {
  double brightest = 0;
  for (const Light& window : windows) brightest = std::max(brightest, luma_of(window));
  if (brightest <= 0) return;
  const double aim = overexposure * kCountsPerTarget * chip.user_data.entry(kAeTargetEntry);
  set_isp_word(chip, picture_register::kGain, gain_code(gain * aim / brightest, kLargestSensorGain));
}

void balance(const std::vector<Light>& windows, const WhiteTest& test, ChipState& chip) {
  std::vector<double> red;
  std::vector<double> blue;
  for (const Light& window : windows) {
    if (!test.is_white(window) || window[0] <= 0 || window[2] <= 0) continue;
    red.push_back(window[1] / window[0]);
    blue.push_back(window[1] / window[2]);
  }
  if (red.empty()) return;
  const Light weights = white_balance_weights(chip);
  set_isp_word(chip, picture_register::kRedGain, gain_code(median(red) * weights[0], kLargestBalance));
  set_isp_word(chip, picture_register::kGreenGain, kGainUnit);
  set_isp_word(chip, picture_register::kBlueGain, gain_code(median(blue) * weights[2], kLargestBalance));
}

}  // namespace

void run_auto_tasks(const Camera& camera, ChipState& chip) {
  const bool ae = chip.direct[reg::kAeTask] != 0;
  const bool awb = chip.direct[reg::kAwbTask] != 0;
  if (!ae && !awb) return;
  PictureSettings settings = picture_settings(chip);
  settings.gain = std::max(settings.gain, 1.0 / kGainUnit);
  const std::vector<Light> windows = statistics(camera, settings);
  if (ae) expose(windows, settings.gain, camera.overexposure(), chip);
  if (awb) balance(windows, settings.white, chip);
}

}  // namespace qv5123
