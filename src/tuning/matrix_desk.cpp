#include "tuning/matrix_desk.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tuning/matrix_fit.h"
#include "tuning/page_flows.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

std::string counts_text(std::size_t patch, const MeasuredColour& counts) {
  return std::string(kPatchCaptions[patch]) + " is " + std::to_string(counts[0]) + ", " +
         std::to_string(counts[1]) + ", " + std::to_string(counts[2]);
}

}  // namespace

Task<std::string> switch_matrix_picker(CommandLink& link, MatrixValues& values, bool on) {
  values.picker_on = on;
  if (on) values.manual_input = false;
  const int enable = co_await read_picker_register(link, picker_register::kEnable);
  if (enable < 0) co_return no_answer_text(picker_register::kEnable);
  values.picker_off = picker_switch_bytes(false, enable);
  std::string trouble = co_await switch_picker(link, on, picker_switch_bytes(on, enable), values.picker);
  if (!on && trouble.empty()) values.picker_off.clear();
  co_return trouble;
}

Task<bool> get_patch_color(CommandLink& link, MatrixValues& values, std::size_t patch) {
  const PerColour colour = co_await read_picker(link);
  if (*std::min_element(colour.begin(), colour.end()) < 0 || patch >= kPatches) co_return false;
  for (std::size_t c = 0; c < 3; ++c) values.measured[patch][c] = static_cast<std::uint32_t>(colour[c]);
  // Whoever chose another patch meanwhile is not to be moved away from it.
  if (values.patch_step <= 0 || values.patch != patch) co_return true;
  go_to_next_patch(values);
  co_await move_picker(link, picker_position_bytes(values.picker));
  co_return true;
}

MatrixDesk::MatrixDesk(DeskHost& host, UserDataImage& image)
    : PageDesk(host, image),
      picker_(host, {values_.picker_on, values_.picker_off, values_.picker, values_.step_index,
                     [this](bool on) { return switch_matrix_picker(link(), values_, on); },
                     [this] { update_keys(); }, [this] { picker_settled(); }}),
      typed_ratio_(values_.ratio) {
  open_with_image();
}

void MatrixDesk::attach(View& view) {
  TuningDesk::attach(view);
  matrix_view_ = &view;
}

void MatrixDesk::choose_light(int light) {
  values_.light = light;
  show_matrix_in_force();
}

void MatrixDesk::choose_mode(int mode) {
  values_.mode = mode;
  show_matrix_in_force();
}

std::vector<WriteNote::Value> MatrixDesk::control_values(int control) const {
  std::vector<WriteNote::Value> values;
  if (values_.mode < 0 || values_.mode >= kVideoModes || control < 0 || control >= kMatrixRows) return values;
  for (const int& code : values_.tables[values_.mode][control][values_.light]) {
    const std::size_t at = field(code);
    values.push_back({at, model().fields()[at].held_by_chip(code)});
  }
  return values;
}

/// Row by row, of whatever mode and light source.
Traffic MatrixDesk::values_traffic(const std::vector<std::size_t>& fields) const {
  Traffic traffic;
  for (int mode = 0; mode < kVideoModes; ++mode) {
    for (int light = 0; light < kMatrixLights; ++light) {
      for (int row = 0; row < kMatrixRows; ++row) {
        const std::size_t first = field(values_.tables[mode][row][light][0]);
        const auto is_of_row = [first](std::size_t f) { return f >= first && f < first + 3; };
        if (std::any_of(fields.begin(), fields.end(), is_of_row))
          append(traffic, matrix_row(values_, mode, light, row));
      }
    }
  }
  return traffic;
}

/// The three codes of each row, which stand one behind the other.
std::vector<WriteNote::Value> MatrixDesk::own_values(const std::vector<std::size_t>& fields) const {
  std::vector<WriteNote::Value> values;
  const std::vector<int> numbers = model().numbers();
  for (std::size_t first = 0; first < numbers.size(); first += 3) {
    const auto is_of_row = [first](std::size_t f) { return f >= first && f < first + 3; };
    if (std::none_of(fields.begin(), fields.end(), is_of_row)) continue;
    for (std::size_t i = first; i < first + 3; ++i)
      values.push_back({i, model().fields()[i].held_by_chip(numbers[i])});
  }
  return values;
}

void MatrixDesk::show_matrix_in_force() {
  show_matrix(values_);
  typed_codes_ = {};
  matrix_view_->show_codes();
  matrix_view_->show_report();
}

void MatrixDesk::choose_patch(std::size_t patch) {
  values_.patch = patch;
  matrix_view_->show_typing();
}

void MatrixDesk::choose_manual_input(bool on) {
  values_.manual_input = on;
  matrix_view_->show_typing();
}

MatrixDesk::Typing MatrixDesk::typing() const {
  if (values_.manual_input) return Typing::all;
  return values_.picker_on ? Typing::chosen : Typing::none;
}

void MatrixDesk::type_patch(std::size_t patch, std::size_t colour, std::uint32_t count) {
  const Changing change(*this, DeskChange::Kind::typed,
                        std::string(kPatchCaptions[patch]) + " " + kMatrixRowNames[colour]);
  values_.measured[patch][colour] = count;
  matrix_view_->show_report();
}

void MatrixDesk::type_ratio(int percent) {
  typed_ratio_ = percent;
  if (!kCorrectionRatio.holds(percent)) return;
  const Changing change(*this, DeskChange::Kind::typed, "Correction Ratio");
  values_.ratio = percent;
}

void MatrixDesk::type_code(int row, int column, std::string text) {
  typed_codes_[row][column] = std::move(text);
}

std::string MatrixDesk::code_text(int row, int column) const {
  return typed_codes_[row][column].value_or(matrix_code_text(values_.coefficients[row][column]));
}

bool MatrixDesk::code_refused(int row, int column) const {
  const std::string text = code_text(row, column);
  return !text.empty() && !matrix_coefficient_of(text);
}

/// Only what was typed becomes a coefficient: a code holds less of one than the fit computed.
bool MatrixDesk::take_codes() {
  Coefficients taken = values_.coefficients;
  for (int row = 0; row < kMatrixRows; ++row) {
    for (int column = 0; column < 3; ++column) {
      float& coefficient = taken[row][column];
      const std::string text = code_text(row, column);
      // What is no number stands there as a code, and is sent as that.
      if (std::isfinite(coefficient) && text == matrix_code_text(coefficient)) continue;
      if (code_refused(row, column)) {
        host().show_failure(std::string(kMatrixCodeNames[row][column]) + " takes " + kMatrixCodeRange + ".");
        return false;
      }
      coefficient = matrix_coefficient_of(text).value_or(0);
    }
  }
  values_.coefficients = taken;
  return true;
}

/// An arrow would move the cursor away from what is being measured.
void MatrixDesk::update_keys() {
  picker_.want_keys(values_.picker_on && !measuring_patch_);
  matrix_view_->show_typing();
}

void MatrixDesk::picker_settled() {
  view().take_typed();
  matrix_view_->show_measurements();
}

void MatrixDesk::get_color() {
  view().take_typed();
  if (!measuring_.running()) measuring_.start(run_get_color());
}

Task<> MatrixDesk::run_get_color() {
  const std::size_t patch = values_.patch;
  co_await picker_.arrive();
  if (picker_.chip_was_away()) {
    host().show_failure("GET COLOR: " + std::string(kPickerChipWasAway));
    co_return;
  }
  measuring_patch_ = true;
  update_keys();
  const MeasuredColour former = values_.measured[patch];
  const bool measured = co_await get_patch_color(link(), values_, patch);
  MatrixValues before = values_;
  before.measured[patch] = former;
  tell({DeskChange::Kind::measured, "GET COLOR", before});
  measuring_patch_ = false;
  if (measured)
    host().show_status("GET COLOR: " + counts_text(patch, values_.measured[patch]));
  else
    host().show_failure("GET COLOR: the chip did not answer.");
  view().take_typed();
  matrix_view_->show_measurements();
  update_keys();
}

void MatrixDesk::calculate(Prompts& prompts) {
  view().take_typed();
  if (!kCorrectionRatio.holds(typed_ratio_))
    return host().show_failure("Correction Ratio takes 0..100 %: nothing was calculated.");
  const MatrixResult result = [this] {
    const Changing change(*this, DeskChange::Kind::computed, "Calculate");
    return calculate_matrix(values_);
  }();
  if (result == MatrixResult::no_grey) return spawn(prompts.message({"Please get color of gray!"}));
  const auto patches = std::count_if(values_.measured.begin(), values_.measured.end(), is_measured);
  if (result == MatrixResult::unsolvable)
    host().show_failure("The measured patches do not determine a matrix.");
  else
    host().show_status("Matrix calculated from " + std::to_string(patches) + " patches.");
  typed_codes_ = {};
  matrix_view_->show_codes();
  matrix_view_->show_report();
}

void MatrixDesk::clear() {
  {
    const Changing change(*this, DeskChange::Kind::computed, "Clear");
    clear_matrix(values_);
  }
  for (auto& row : typed_codes_) row.fill(std::string());
  view().show_values();
  host().show_status("Patches and shown matrix are empty.");
}

void MatrixDesk::set_row(MatrixControl row) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::typed,
                        std::string(kMatrixRowNames[static_cast<int>(row)]) + " row");
  if (!take_codes()) return;
  set_matrix_rows(values_);
  typed_codes_ = {};
  matrix_view_->show_codes();
  matrix_view_->show_report();
  const int number = static_cast<int>(row);
  send_control(std::string(kMatrixRowNames[number]) + " row", number);
}

Task<> MatrixDesk::save(PageHost& files) {
  host().show_status("CCM Data Saving... Please wait");
  view().take_typed();
  // Before the file, which may have to be chosen: what is loaded meanwhile belongs neither there nor here.
  FullSave on_chip = full_save();
  const bool written = co_await files.save_everything();
  // Until the chip's exposure and white balance run again.
  const BusyScope busy(host());
  const bool whole = co_await send_save(std::move(on_chip), std::string());
  if (!whole) co_return;
  if (picker_trouble_.empty()) host().show_status(kPickerOffStatus);
  host().show_status("Transfered Linear Matrix parameters to ISP. Enable color correction.");
  if (!written) host().show_status(kSavedOnChipOnly);
  if (!picker_trouble_.empty()) host().show_failure(picker_trouble_);
}

Task<> MatrixDesk::after_save() {
  const bool was_on = values_.picker_on;
  // The picker must not be switched on again before it is off.
  matrix_view_->allow_switch(false);
  values_.picker_on = false;
  update_keys();
  matrix_view_->show_measurements();
  picker_trouble_ = co_await switch_matrix_picker(link(), values_, false);
  if (!picker_trouble_.empty()) {
    values_.picker_on = was_on;
    host().show_failure(picker_trouble_);
  }
  matrix_view_->allow_switch(true);
  view().take_typed();
  update_keys();
  matrix_view_->show_measurements();
}

}  // namespace qv5123
