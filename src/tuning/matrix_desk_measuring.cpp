// How the linear matrix page measures: patch by patch, and the whole chart.
#include <algorithm>
#include <utility>

#include "tuning/matrix_desk.h"

namespace qv5123 {

std::string MatrixDesk::reading_text(std::size_t patch) const {
  const MeasuredColour& counts = values_.measured[patch];
  return std::string(kPatchCaptions[patch]) + " is " + std::to_string(counts[0]) + ", " +
         std::to_string(counts[1]) + ", " + std::to_string(counts[2]);
}

void MatrixDesk::approach(std::size_t patch, PickerPosition place) {
  values_.patch = patch;
  values_.picker = place;
  matrix_view_->show_measurements();
  matrix_view_->show_run();
}

void MatrixDesk::take_reading(std::size_t patch, const PerColour& colour) {
  for (std::size_t c = 0; c < 3; ++c) values_.measured[patch][c] = static_cast<std::uint32_t>(colour[c]);
}

void MatrixDesk::get_color() {
  view().take_typed();
  if (measuring_all()) return host().show_status("GET COLOR: the whole chart is being measured.");
  if (!measuring_.running()) return measuring_.start(run_get_color());
  // With a patch step the next press means the next patch.
  const bool next = values_.patch == measured_patch_ && values_.patch_step > 0;
  presses_.push_back(next ? std::nullopt : std::optional(values_.patch));
  host().show_status("GET COLOR: " + std::to_string(presses_.size()) + " more to come.");
}

Task<> MatrixDesk::run_get_color() {
  presses_.assign(1, values_.patch);
  std::optional<std::size_t> measured;
  while (!presses_.empty()) {
    const std::size_t patch = presses_.front().value_or(values_.patch);
    presses_.pop_front();
    const bool done = co_await measure_patch(patch);
    if (done) measured = patch;
    // The rest of the chart follows by itself.
    if (done && run_.stopped_at(patch)) presses_.clear();
  }
  if (!measured || !run_.stopped_at(*measured)) co_return;
  if (const auto places = patch_places(corners())) running_all_.start(run_all(*places, *measured + 1));
}

/// An arrow would move the cursor away from what is being measured.
Task<bool> MatrixDesk::measure_patch(std::size_t patch) {
  measured_patch_ = patch;
  const bool arrived = co_await picker_.arrive_for_color();
  if (!arrived) {
    presses_.clear();
    co_return false;
  }
  picker_.set_measuring(true);
  const MeasuredColour former = values_.measured[patch];
  const GotColor got = co_await get_patch_color(link(), values_, patch);
  const bool measured = got != GotColor::no_answer;
  MatrixValues before = values_;
  before.measured[patch] = former;
  tell({DeskChange::Kind::measured, "GET COLOR", before});
  if (measured) forget_fits();
  if (got == GotColor::cursor_lost) picker_.forget_place();
  if (measured)
    host().show_status("GET COLOR: " + reading_text(patch));
  else
    host().show_failure("GET COLOR: the chip did not answer.");
  view().take_typed();
  matrix_view_->show_measurements();
  picker_.set_measuring(false);
  co_return measured;
}

void MatrixDesk::set_corner() {
  view().take_typed();
  const auto corner = corner_of(values_.patch);
  if (!corner)
    return host().show_failure(
        "The corners are Dark skin, Bluish green, Black and White: choose one of them.");
  take_corner(*corner);
}

void MatrixDesk::take_pointed() {
  const auto corner = corner_of(values_.patch);
  const bool all_set = std::ranges::all_of(corners(), [](const auto& place) { return place.has_value(); });
  if (corner && !all_set && matrix_view_->in_view()) take_corner(*corner);
}

void MatrixDesk::take_corner(std::size_t corner) {
  ChartCorners& corners = board_->corners()[static_cast<std::size_t>(values_.mode)];
  corners[corner] = clamped(values_.picker);
  board_->corner_set(values_.mode);
  const auto set = std::ranges::count_if(corners, [](const auto& place) { return place.has_value(); });
  std::string text = "Corner " + std::to_string(set) + " of 4 is set.";
  const auto open = std::ranges::find_if(corners, [](const auto& place) { return !place; });
  if (open != corners.end()) {
    values_.patch = kCornerPatches[static_cast<std::size_t>(open - corners.begin())];
    text += std::string(" The next is ") + patch_name(values_.patch) + ".";
  }
  host().show_status(text);
  matrix_view_->show_measurements();
  matrix_view_->show_run();
}

void MatrixDesk::measure_all() {
  view().take_typed();
  if (measuring_all()) return run_.stop();
  const auto places = patch_places(corners());
  if (!values_.picker_on || measuring_.running())
    return host().show_failure("Measure all 24: enable the color picker first, and wait for GET COLOR.");
  if (!places)
    return host().show_failure(
        "Measure all 24: put the cursor on each corner patch and press Set corner there.");
  running_all_.start(run_all(*places, 0));
}

/// One step for whoever takes it back, however many patches it measures.
Task<> MatrixDesk::run_all(std::array<PickerPosition, kPatches> places, std::size_t first) {
  const bool begun = co_await run_.begin();
  if (begun) {
    const BusyScope busy(host());
    const MeasuredColours former = values_.measured;
    if (first == 0) values_.measured = {};
    forget_fits();
    co_await run_.measure(places, first);
    forget_fits();
    MatrixValues before = values_;
    before.measured = former;
    tell({DeskChange::Kind::measured, "Measure all 24", before});
  }
  run_.end();
  matrix_view_->show_measurements();
}

}  // namespace qv5123
