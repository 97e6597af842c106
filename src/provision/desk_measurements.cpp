#include "provision/desk_measurements.h"

#include <algorithm>

#include "base/delay.h"
#include "tuning/matrix_fit.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kLook{20};
constexpr char kStopped[] = "Interrupted";

/// Resumes once `busy` says no.
Task<> wait_for(UnattendedHost& host, std::function<bool()> busy) {
  while (busy()) co_await Delay(host.scheduler(), kLook);
}

/// Why the chip did not follow; empty when it did.
Task<std::string> switch_picker_of(UnattendedHost& host, PickerDesk& picker, bool on) {
  picker.click_switch(on);
  std::function<bool()> busy = [&picker] { return picker.switching(); };
  co_await wait_for(host, std::move(busy));
  if (picker.on() == on) co_return std::string();
  co_return host.last_status();
}

double ripple_of(const LensDesk& desk, std::size_t colour) {
  const LensCalibration& calibration = desk.calibration();
  double lowest = 0, highest = 0, sum = 0;
  for (const LensSample& sample : calibration.samples) {
    const double level = corrected_level(calibration, desk.values(), sample, colour);
    const bool first = &sample == &calibration.samples.front();
    lowest = first ? level : std::min(lowest, level);
    highest = first ? level : std::max(highest, level);
    sum += level;
  }
  return sum > 0 ? (highest - lowest) * 100 * static_cast<double>(calibration.samples.size()) / sum : 0;
}

Task<std::string> measure_patches(UnattendedHost& host, MatrixDesk& desk, ChartPlace place) {
  desk.choose_patch_step(place.step);
  desk.choose_patch(0);
  for (std::size_t patch = 0; patch < kPatches; ++patch) {
    if (host.stopped()) co_return std::string(kStopped);
    host.show_progress(static_cast<int>(patch * 100 / kPatches));
    desk.get_color();
    std::function<bool()> busy = [&desk] { return desk.measuring(); };
    co_await wait_for(host, std::move(busy));
    // The patches start empty; what the chip says of one is there, be it black.
    const std::size_t next = patch + 1 == kPatches ? 0 : patch + 1;
    if (desk.values().patch != next) co_return std::string(kPatchCaptions[patch]) + ": " + host.last_status();
  }
  co_return std::string();
}

/// Empty, or why there is no matrix.
std::string fit_and_send(UnattendedHost& host, MatrixDesk& desk) {
  if (!fit_matrix(desk.values().measured, desk.values().ratio)) return "Please get color of gray!";
  HeadlessPrompts prompts;
  desk.calculate(prompts);
  const auto fit = fit_matrix(desk.values().measured, desk.values().ratio);
  if (!fit->solvable) return host.last_status();
  for (int row = 0; row < kMatrixRows; ++row) desk.set_row(static_cast<MatrixControl>(row));
  return {};
}

}  // namespace

Task<LensMeasurement> measure_lens(UnattendedHost& host, LensDesk& desk) {
  LensMeasurement result;
  result.trouble = co_await switch_picker_of(host, desk.picker(), true);
  if (!result.trouble.empty()) co_return result;
  HeadlessPrompts prompts;
  desk.start_calibration(prompts);
  std::function<bool()> busy = [&] {
    // The switch ends a sweep.
    if (host.stopped() && desk.picker().on() && !desk.picker().switching()) desk.picker().click_switch(false);
    return desk.calibrating() || desk.picker().switching();
  };
  co_await wait_for(host, std::move(busy));
  result.trouble = host.stopped() ? kStopped : prompts.last_message();
  if (result.trouble.empty() && desk.calibration().samples.empty()) result.trouble = host.last_status();
  for (std::size_t colour = 0; colour < 3; ++colour) result.ripple[colour] = ripple_of(desk, colour);
  co_return result;
}

Task<MatrixMeasurement> measure_matrix(UnattendedHost& host, MatrixDesk& desk, ChartPlace place, bool fit) {
  MatrixMeasurement result;
  desk.picker().type_x(place.first.x);
  desk.picker().type_y(place.first.y);
  result.trouble = co_await switch_picker_of(host, desk.picker(), true);
  if (!result.trouble.empty()) co_return result;
  result.trouble = co_await measure_patches(host, desk, place);
  if (result.trouble.empty() && fit) result.trouble = fit_and_send(host, desk);
  if (result.trouble.empty())
    result.report = patch_report(desk.values().measured, desk.values().coefficients);
  const std::string left_on = co_await switch_picker_of(host, desk.picker(), false);
  if (result.trouble.empty()) result.trouble = left_on;
  co_return result;
}

Task<std::string> measure_awb(UnattendedHost& host, AwbDesk& desk) {
  desk.choose_patch(0);
  desk.get_color();
  std::function<bool()> busy = [&desk] { return desk.measuring(); };
  co_await wait_for(host, std::move(busy));
  co_return host.last_status();
}

}  // namespace qv5123
