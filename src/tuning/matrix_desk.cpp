#include "tuning/matrix_desk.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/text.h"
#include "tuning/matrix_diagnosis.h"
#include "tuning/page_flows.h"
#include "tuning/picker_flow.h"
#include "tuning/video_mode.h"

namespace qv5123 {
namespace {

std::string row_name(MatrixControl row) {
  return std::string(kMatrixRowNames[static_cast<int>(row)]) + " row";
}

}  // namespace

Task<std::string> switch_matrix_picker(CommandLink& link, MatrixValues& values, bool on) {
  values.picker_on = on;
  if (on) values.manual_input = false;
  co_return co_await switch_plain_picker(link, on, {values.picker_off, values.picker});
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

MatrixDesk::MatrixDesk(DeskHost& host, UserDataImage& image, std::shared_ptr<MeasuringBoard> board)
    : PageDesk(host, image),
      board_(std::move(board)),
      picker_(host,
              {values_.picker_on, values_.picker_off, values_.picker, values_.step_index,
               [this](bool on) { return switch_matrix_picker(link(), values_, on); },
               [this] { update_keys(); }, [this] { picker_settled(); }},
              board_),
      typed_ratio_(values_.ratio) {
  board_->chart = &values_.measured;
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
  show_current();
}

void MatrixDesk::choose_patch(std::size_t patch) {
  const std::size_t from = std::exchange(values_.patch, patch);
  if (values_.patch_step > 0 && values_.picker_on && !measuring_patch_ && !measuring_all()) {
    const auto steps = [&](std::size_t to_place, std::size_t from_place) {
      return (static_cast<int>(to_place) - static_cast<int>(from_place)) *
             std::min(values_.patch_step, kPickerMaximumX);
    };
    PickerPosition& at = values_.picker;
    at = clamped({at.x + steps(patch % kPatchesInRow, from % kPatchesInRow),
                  at.y + steps(patch / kPatchesInRow, from / kPatchesInRow)});
    picker_.go();
  }
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
  forget_fits();
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
      if (text.empty()) {
        host().show_failure(std::string(kMatrixCodeNames[row][column]) + " is empty: nothing was sent.");
        return false;
      }
      if (code_refused(row, column)) {
        host().show_failure(std::string(kMatrixCodeNames[row][column]) + " takes " + kMatrixCodeRange + ".");
        return false;
      }
      coefficient = *matrix_coefficient_of(text);
    }
  }
  values_.coefficients = taken;
  return true;
}

/// An arrow would move the cursor away from what is being measured.
void MatrixDesk::update_keys() {
  if (values_.picker_on) values_.manual_input = false;
  picker_.want_keys(values_.picker_on);
  matrix_view_->show_typing();
}

void MatrixDesk::picker_settled() {
  view().take_typed();
  matrix_view_->show_measurements();
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
  const std::string other_mode = other_mode_text();
  if (!other_mode.empty()) host().show_failure(other_mode);
  fits_.calculated = values_.coefficients;
  show_current();
}

std::string MatrixDesk::other_mode_text() const {
  const std::optional<int> number = board_->video_mode(image());
  const auto mode = number ? video_mode_of(*number) : std::nullopt;
  if (!mode || mode->signal == values_.mode || values_.mode < 0 || values_.mode >= kVideoModes) return {};
  const auto name = [](int of) { return std::string(kMatrixModeNames[static_cast<std::size_t>(of)]); };
  return "The chip's video mode is " + std::string(video_mode_name(*number)) + ": it uses the matrix of " +
         name(mode->signal) + ", and this is that of " + name(values_.mode) + ".";
}

void MatrixDesk::show_current() {
  typed_codes_ = {};
  matrix_view_->show_codes();
  matrix_view_->show_report();
}

void MatrixDesk::fit_color_difference(PageHost& worker) {
  view().take_typed();
  if (!fitting_.running()) fitting_.start(run_color_fit(worker));
}

Task<> MatrixDesk::run_color_fit(PageHost& worker) {
  const MeasuredColours measured = values_.measured;
  const std::optional<MatrixFit> calculated = fit_matrix(measured, values_.ratio);
  if (!calculated) {
    Message no_grey{"Please get color of gray!"};
    co_await worker.prompts().message(std::move(no_grey));
    co_return;
  }
  std::function<std::optional<Coefficients>()> work = [measured, options = color_options_] {
    return qv5123::fit_color_difference(measured, options);
  };
  const std::optional<Coefficients> found = co_await worker.background().run(std::move(work));
  // What was measured meanwhile is not what was fitted.
  if (!found || measured != values_.measured) co_return;
  if (!fits_.calculated) fits_.calculated = calculated->coefficients;
  fits_.color_difference = found;
  const auto mean = [&](const Coefficients& matrix) {
    return fixed(patch_report(measured, matrix).value_or(PatchReport{}).after.mean, 2);
  };
  host().show_status("Color difference fit: mean " + mean(*found) + ", calculated " +
                     mean(*fits_.calculated) + ". Choose one below the patches.");
  matrix_view_->show_report();
}

void MatrixDesk::choose_fit(Fit fit) {
  const auto& matrix = fit == Fit::calculated ? fits_.calculated : fits_.color_difference;
  if (!matrix) return;
  const Changing change(*this, DeskChange::Kind::computed,
                        fit == Fit::calculated ? "Calculate" : "Fit color difference");
  values_.coefficients = *matrix;
  store_matrix(values_);
  show_current();
}

bool MatrixDesk::in_force(Fit fit) const {
  const auto& matrix = fit == Fit::calculated ? fits_.calculated : fits_.color_difference;
  return matrix && as_registers_hold(*matrix) == as_registers_hold(values_.coefficients);
}

void MatrixDesk::forget_fits() {
  fits_ = {};
}

void MatrixDesk::clear() {
  {
    const Changing change(*this, DeskChange::Kind::computed, "Clear");
    clear_matrix(values_);
  }
  forget_fits();
  for (auto& row : typed_codes_) row.fill(std::string());
  view().show_values();
  host().show_status("Patches and shown matrix are empty.");
}

void MatrixDesk::set_row(MatrixControl row, Prompts& prompts) {
  with_consent(row_name(row), other_mode_text(), prompts, [this, row] { send_row(row); });
}

void MatrixDesk::copy_matrix(std::vector<MatrixPlace> places, Prompts& prompts) {
  if (places.empty()) return;
  with_consent("Copy matrix to...", {}, prompts, [this, places = std::move(places)] { send_copies(places); });
}

/// Calls `send` with the rows ready to be sent, unless the user, who is told what is doubtful about them,
/// says no: then nothing has changed.
void MatrixDesk::with_consent(std::string what, const std::string& doubt, Prompts& prompts,
                              std::function<void()> send) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::typed, what);
  const Coefficients before = values_.coefficients;
  if (!take_codes()) return;
  MatrixValues ready = values_;
  set_matrix_rows(ready);
  std::string reasons = doubt.empty() ? doubt : doubt + "\n";
  for (const std::string& warning : matrix_warnings(ready)) reasons += warning + "\n";
  if (reasons.empty() || reasons == accepted_) return send();
  values_.coefficients = before;
  spawn(ask_first(prompts, std::move(what), std::move(reasons), std::move(send)));
}

Task<> MatrixDesk::ask_first(Prompts& prompts, std::string what, std::string reasons,
                             std::function<void()> send) {
  const Answer answer = co_await prompts.ask(careful_question(reasons + "\nSend the matrix all the same?"));
  if (answer != Answer::yes) {
    host().show_status("The matrix was not sent.");
    co_return;
  }
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::typed, std::move(what));
  if (!take_codes()) co_return;
  accepted_ = std::move(reasons);
  send();
}

void MatrixDesk::send_row(MatrixControl row) {
  set_matrix_rows(values_);
  show_current();
  send_control(row_name(row), static_cast<int>(row));
}

void MatrixDesk::send_copies(const std::vector<MatrixPlace>& places) {
  set_matrix_rows(values_);
  std::vector<std::size_t> fields;
  for (const MatrixPlace& place : places) {
    for (int row = 0; row < kMatrixRows; ++row) {
      MatrixCodes& codes = values_.tables[place.mode][row][place.light];
      codes = values_.tables[values_.mode][row][values_.light];
      for (const int& code : codes) fields.push_back(field(code));
    }
  }
  show_current();
  send_noted(
      "Matrix copied to " + std::to_string(places.size()) + (places.size() == 1 ? " place" : " places"),
      matrix_send_copies(values_, places), own_values(fields));
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
  picker_.allow_switch(false);
  picker_trouble_ = co_await picker_.switch_own_way(false);
  if (!picker_trouble_.empty()) {
    values_.picker_on = was_on;
    host().show_failure(picker_trouble_);
  }
  matrix_view_->allow_switch(true);
  picker_.allow_switch(true);
  view().take_typed();
  update_keys();
  matrix_view_->show_measurements();
}

}  // namespace qv5123
