#include "tuning/chart_measurement.h"

#include <algorithm>

namespace qv5123 {

Task<bool> ChartMeasurement::begin() {
  running_ = true;
  stopped_ = false;
  complaint_.clear();
  forget();
  const bool arrived = co_await picker_.arrive();
  co_return arrived && !stopped_;
}

Task<> ChartMeasurement::measure(std::array<PickerPosition, kPatches> places, std::size_t first) {
  picker_.set_measuring(true);
  for (std::size_t patch = first; patch < kind_.patches && !stopped_; ++patch) {
    chart_.approach(patch, places[patch]);
    host_.show_progress(static_cast<int>(100 * patch / kind_.patches));
    const bool goes_on = co_await measure_patch(patch, places[patch]);
    if (!goes_on) break;
    host_.show_status("Measured " + chart_.reading_text(patch) + "; " +
                      std::to_string(kind_.patches - 1 - patch) + " left." + zeros_text());
  }
  picker_.set_measuring(false);
}

/// A saturated color may read 0 in one part, which is no fault but keeps it out of the fits.
std::string ChartMeasurement::zeros_text() const {
  std::string names;
  for (std::size_t patch = 0; patch < kind_.patches; ++patch) {
    const auto [lowest, highest] = std::ranges::minmax(chart_.readings()[patch]);
    if (lowest == 0 && highest > 0) names += (names.empty() ? "" : ", ") + patch_name(patch);
  }
  return names.empty() ? names : " One part reads 0: " + names + ".";
}

void ChartMeasurement::end() {
  if (stopped_) host_.show_status(kind_.name + ": stopped.");
  running_ = false;
}

/// False where the run ends there.
Task<bool> ChartMeasurement::measure_patch(std::size_t patch, PickerPosition place) {
  const SteadyReading reading = co_await read_steadily(host_.link(), place, kind_.registers);
  if (!picker_.on()) stopped_ = true;
  if (stopped_) co_return false;
  if (reading.colour[0] < 0) picker_.forget_place();
  complaint_ = picker_.chip_was_away() ? std::string(kPickerChipWasAway)
                                       : reading_complaint(chart_.readings(), patch, reading);
  if (complaint_.empty())
    chart_.take_reading(patch, reading.colour);
  else
    stop_at(patch);
  co_return complaint_.empty();
}

void ChartMeasurement::stop_at(std::size_t patch) {
  std::string text = kind_.name + " stopped. " + complaint_;
  // Switching the picker off and on again ends the run.
  if (!picker_.chip_was_away()) {
    stopped_at_ = patch;
    left_ = chart_.patches();
    text += " GET COLOR measures it anew, and the rest follows.";
  }
  host_.show_failure(text);
}

}  // namespace qv5123
