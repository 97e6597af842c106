#include "tuning/matrix_desk.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "tuning/page_flows.h"
#include "tuning/picker_flow.h"
#include "tuning/video_mode.h"

namespace qv5123 {

Task<std::string> switch_matrix_picker(CommandLink& link, MatrixValues& values, bool on) {
  values.picker_on = on;
  if (on) values.manual_input = false;
  co_return co_await switch_plain_picker(link, on, {values.picker_off, values.picker});
}

Task<GotColor> get_patch_color(CommandLink& link, MatrixValues& values, std::size_t patch) {
  const PerColour colour = co_await read_picker(link);
  if (*std::min_element(colour.begin(), colour.end()) < 0 || patch >= kPatches) co_return GotColor::no_answer;
  for (std::size_t c = 0; c < 3; ++c) values.measured[patch][c] = static_cast<std::uint32_t>(colour[c]);
  // Whoever chose another patch meanwhile is not to be moved away from it.
  if (values.patch_step <= 0 || values.patch != patch) co_return GotColor::measured;
  go_to_next_patch(values);
  const bool left = co_await move_picker(link, picker_position_bytes(values.picker));
  co_return left ? GotColor::measured : GotColor::cursor_lost;
}

MatrixDesk::MatrixDesk(DeskHost& host, UserDataImage& image, std::shared_ptr<MeasuringBoard> board)
    : PageDesk(host, image),
      board_(std::move(board)),
      picker_(host,
              {values_.picker_on, values_.picker_off, values_.picker, values_.step_index,
               [this](bool on) { return switch_matrix_picker(link(), values_, on); },
               [this] { update_keys(); }, [this] { picker_settled(); }, [this] { take_pointed(); }},
              board_),
      typed_ratio_(values_.ratio),
      run_(host, picker_, *this, {"Measure all 24", kPatches, kPickerColourRegisters}) {
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
  // The run's corners are those of the other mode.
  run_.forget();
  show_matrix_in_force();
}

void MatrixDesk::values_loaded() {
  typed_codes_ = {};
  run_.values_replaced();
  if (fitted_to_ != values_.measured) forget_fits();
}

void MatrixDesk::show_matrix_in_force() {
  show_matrix(values_);
  show_current();
}

void MatrixDesk::choose_patch(std::size_t patch) {
  const std::size_t from = std::exchange(values_.patch, patch);
  if (values_.patch_step > 0 && picker_.keys_enabled()) {
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

/// An arrow would move the cursor away from what is being measured.
void MatrixDesk::update_keys() {
  if (values_.picker_on) {
    values_.manual_input = false;
  } else {
    run_.forget();
    presses_.clear();
  }
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
  fitted_to_ = values_.measured;
  note_doubts();
  show_current();
}

std::string MatrixDesk::other_mode_text() const {
  const std::optional<int> number = board_->video_mode(image());
  const auto mode = number ? video_mode_of(*number) : std::nullopt;
  if (!mode || mode->signal == values_.mode || values_.mode < 0 || values_.mode >= kVideoModes) return {};
  const auto name = [](int of) { return std::string(kVideoModeNames[static_cast<std::size_t>(of)]); };
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
  fitted_to_ = measured;
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
  note_doubts();
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
  run_.forget();
  for (auto& row : typed_codes_) row.fill(std::string());
  view().show_values();
  host().show_status("Patches and shown matrix are empty.");
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
  if (picker_trouble_.empty()) host().show_status_of(kAboutPicker, kPickerOffStatus);
  host().show_status("Transfered Linear Matrix parameters to ISP. Enable color correction.");
  if (!written) host().show_status(kSavedOnChipOnly);
  if (!picker_trouble_.empty()) host().show_failure_of(kAboutPicker, picker_trouble_);
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
    host().show_failure_of(kAboutPicker, picker_trouble_);
  }
  matrix_view_->allow_switch(true);
  picker_.allow_switch(true);
  view().take_typed();
  update_keys();
  matrix_view_->show_measurements();
}

}  // namespace qv5123
