#include "tuning/awb_desk.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/delay.h"
#include "base/hex.h"
#include "tuning/matrix_fit.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

/// Lets the status line be painted before the save begins.
constexpr std::chrono::milliseconds kBeforeSave{50};

}  // namespace

AwbDesk::AwbDesk(DeskHost& host, UserDataImage& image, std::shared_ptr<MeasuringBoard> board)
    : PageDesk(host, image),
      board_(std::move(board)),
      picker_(host,
              {picker_on_, picker_off_, place_, step_index_,
               [this](bool on) {
                 return switch_plain_picker(link(), on, {picker_off_, place_});
               },
               [this] { picker_switched(); }},
              board_),
      run_(host, picker_, *this, {"Measure 18", kColouredPatches, kAwbColourRegisters}) {
  // Saving a page that was opened after the file must not replace what the file said.
  if (image.loaded()) open_with_image();
}

void AwbDesk::attach(View& view) {
  TuningDesk::attach(view);
  awb_view_ = &view;
}

Traffic AwbDesk::control_traffic(int control) const {
  return awb_row_traffic(values_, awb_row(static_cast<AwbControl>(control)));
}

void AwbDesk::limit(const std::vector<std::size_t>& fields) {
  for (const std::size_t field : fields) {
    const int line = model().fields()[field].sent_by;
    if (line != Field::kNowhere) limit_awb_row(values_, awb_row(static_cast<AwbControl>(line)));
  }
}

void AwbDesk::send_line(AwbControl line) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::computed, std::string("Line ") + awb_row(line).name);
  limit_awb_row(values_, awb_row(line));
  view().show_values();
  send_control(std::string("Line ") + awb_row(line).name, static_cast<int>(line));
}

std::string AwbDesk::reading_text(std::size_t patch) const {
  const PatchColour& colour = values_.patches[patch];
  return std::string(kAwbPatches[patch].caption) + " is " + std::to_string(colour.r) + ", " +
         std::to_string(colour.g) + ", " + std::to_string(colour.b);
}

void AwbDesk::take_reading(std::size_t patch, const PerColour& colour) {
  view().take_typed();
  values_.patches[patch] = {colour[0], colour[1], colour[2]};
  if (patch < kColouredPatches)
    for (std::size_t c = 0; c < 3; ++c) seen_[patch][c] = static_cast<std::uint32_t>(colour[c]);
  view().show_values();
}

MeasuredColours AwbDesk::patches() const {
  MeasuredColours patches{};
  for (std::size_t i = 0; i < kColouredPatches; ++i) {
    const PatchColour& colour = values_.patches[i];
    const int parts[] = {colour.r, colour.g, colour.b};
    for (std::size_t c = 0; c < 3; ++c) patches[i][c] = static_cast<std::uint32_t>(parts[c]);
  }
  return patches;
}

void AwbDesk::approach(std::size_t patch, PickerPosition place) {
  patch_ = patch;
  place_ = place;
  awb_view_->show_measuring();
}

void AwbDesk::picker_switched() {
  if (picker_on_) return;
  run_.forget();
  presses_.clear();
}

void AwbDesk::get_color() {
  if (measuring_all() || picker_.at_work_elsewhere())
    return host().show_status("GET COLOR: the cursor is being moved by a measurement.");
  if (!measuring_.running()) return measuring_.start(run_get_color());
  const bool next = advances_ && patch_ == measured_patch_;
  presses_.push_back(next ? std::nullopt : std::optional(patch_));
  host().show_status("GET COLOR: " + std::to_string(presses_.size()) + " more to come.");
}

Task<> AwbDesk::run_get_color() {
  presses_.assign(1, patch_);
  std::optional<std::size_t> measured;
  while (!presses_.empty()) {
    measured_patch_ = presses_.front().value_or(patch_);
    presses_.pop_front();
    const bool done = co_await measure(measured_patch_);
    if (done) measured = measured_patch_;
    // The rest of the chart follows by itself.
    if (done && run_.stopped_at(measured_patch_)) presses_.clear();
  }
  if (!measured || !run_.stopped_at(*measured)) co_return;
  if (const auto places = patch_places(board_->latest_corners()))
    running_all_.start(run_all(*places, *measured + 1));
}

Task<bool> AwbDesk::measure(std::size_t patch) {
  const bool arrived = co_await picker_.arrive_for_color();
  if (!arrived) {
    presses_.clear();
    co_return false;
  }
  picker_.set_measuring(true);
  const bool measured = co_await read(patch);
  picker_.set_measuring(false);
  co_return measured;
}

/// The patch changes only when the chip answered for all three colours.
Task<bool> AwbDesk::read(std::size_t patch) {
  IspBytes where_it_is;
  const PerColour colour = co_await read_picker_at(link(), std::move(where_it_is), kAwbColourRegisters);
  const auto missing = std::find(colour.begin(), colour.end(), -1);
  if (missing != colour.end()) {
    const int address = kAwbColourRegisters[static_cast<std::size_t>(missing - colour.begin())];
    host().show_failure("GET COLOR: no answer from 0xF" + upper_hex(static_cast<unsigned>(address), 3));
    co_return false;
  }
  {
    const Changing change(*this, DeskChange::Kind::measured, "GET COLOR");
    take_reading(patch, colour);
  }
  // Whoever chose another patch meanwhile is not to be moved away from it.
  if (advances_ && patch_ == patch) patch_ = (patch + 1) % kAwbPatchCount;
  view().show_values();
  host().show_status("GET COLOR: " + reading_text(patch));
  co_return true;
}

void AwbDesk::take_from_matrix() {
  view().take_typed();
  std::size_t taken = 0;
  {
    const Changing change(*this, DeskChange::Kind::taken_over, "From LinearMatrix");
    for (std::size_t patch = 0; board_->chart && patch < kColouredPatches; ++patch) {
      const MeasuredColour& counts = (*board_->chart)[patch];
      if (!is_measured(counts)) continue;
      const auto count = [&counts](std::size_t c) { return static_cast<int>(std::min(counts[c], 255u)); };
      values_.patches[patch] = {count(0), count(1), count(2)};
      ++taken;
    }
  }
  view().show_values();
  host().show_status(taken == 0
                         ? "From LinearMatrix: none of the 18 colors is measured there."
                         : "From LinearMatrix: " + std::to_string(taken) + " of 18 colors taken over.");
}

void AwbDesk::measure_all() {
  view().take_typed();
  if (measuring_all()) return run_.stop();
  if (!picker_on_ || measuring_.running())
    return host().show_status("Measure 18: enable the color picker first, and wait for GET COLOR.");
  const auto places = patch_places(board_->latest_corners());
  if (!places)
    return host().show_status(
        "Measure 18: the chart's four corners are set on LinearMatrix, and are not yet.");
  running_all_.start(run_all(*places, 0));
}

/// One step for whoever takes it back, however many patches it measures.
Task<> AwbDesk::run_all(std::array<PickerPosition, kPatches> places, std::size_t first) {
  if (first == 0) seen_ = {};
  const bool begun = co_await run_.begin();
  if (begun) {
    const BusyScope busy(host());
    const auto former = values_.patches;
    co_await run_.measure(places, first);
    AwbValues before = values_;
    before.patches = former;
    tell({DeskChange::Kind::measured, "Measure 18", before});
  }
  run_.end();
  awb_view_->show_measuring();
}

Task<> AwbDesk::save() {
  host().show_status("AWB Data Saving...");
  co_await Delay(host().scheduler(), kBeforeSave);
  view().take_typed();
  co_await send_save(full_save(), "AWB Data Save Done.");
}

}  // namespace qv5123
