#include "tuning/lens_desk.h"

#include <functional>
#include <utility>

#include "base/text.h"
#include "tuning/page_flows.h"
#include "tuning/video_mode.h"

namespace qv5123 {

LensDesk::LensDesk(DeskHost& host, UserDataImage& image, std::shared_ptr<MeasuringBoard> board)
    : PageDesk(host, image),
      board_(std::move(board)),
      picker_(host,
              {values_.picker_on, values_.picker_off, values_.picker, values_.step_index,
               [this](bool on) { return switch_lens_picker(link(), values_, on); }},
              board_) {
  open_with_image();
}

void LensDesk::attach(View& view) {
  TuningDesk::attach(view);
  lens_view_ = &view;
}

void LensDesk::allow_switch(bool allowed) {
  lens_view_->allow_switch(allowed);
  picker_.allow_switch(allowed);
}

std::string LensDesk::other_size_text() const {
  const std::optional<int> number = board_->video_mode(image());
  const auto mode = number ? video_mode_of(*number) : std::nullopt;
  if (!mode || !mode->screen || *mode->screen == values_.screen_index) return {};
  return "The chip's video mode is " + std::string(video_mode_name(*number)) + ": its lines have " +
         std::to_string(lens_line_width(*mode->screen)) + " pixels, and Screen Size says " +
         std::to_string(lens_line_width(values_.screen_index)) + ".";
}

void LensDesk::tell_other_size() {
  const std::string text = other_size_text();
  if (!text.empty()) host().show_failure(text);
}

void LensDesk::begin_sweep() {
  picker_.want_keys(false);
  picker_.set_sweeping(true);
}

void LensDesk::end_sweep(bool keys) {
  picker_.want_keys(keys);
  picker_.set_sweeping(false);
}

Traffic LensDesk::control_traffic(int control) const {
  switch (static_cast<LensControl>(control)) {
    case LensControl::parameter1:
      return {lens_send_parameter1(values_)};
    case LensControl::parameter2:
      return {lens_send_parameter2(values_)};
    case LensControl::flicker:
      return {flicker_mode_write(values_.flicker)};
  }
  return {};
}

void LensDesk::send_row(LensControl row) {
  view().take_typed();
  const PerColour& sent = row == LensControl::parameter1 ? values_.parameter1 : values_.parameter2;
  send_control(info(sent[0]).caption.words[0], static_cast<int>(row));
}

void LensDesk::move_ratio(int ratio) {
  const Changing change(*this, DeskChange::Kind::typed, "Correction Ratio");
  values_.ratio = ratio;
  // What was found is on its way, and is sent once more with this ratio.
  if (found_) recompute_lens(*found_, values_);
  // A sweep under way takes the ratio when it gets there.
  if (!values_.calibrated || calibrating()) return;
  lens_view_->clear_log();
  if (calibration_.samples.empty()) return;
  lens_view_->add_to_log(recompute_lens(calibration_, values_));
  view().show_values();
  send_noted("Parameters", {lens_send_parameters(values_)}, save_values());
}

void LensDesk::set_flicker(int mode) {
  const Changing change(*this, DeskChange::Kind::typed, "Flickerless");
  values_.flicker = mode;
  view().show_values();
  send_noted("Flickerless", {flicker_mode_write(mode)}, {});
}

void LensDesk::start_calibration(Prompts& prompts) {
  view().take_typed();
  if (!calibrating() && !checking_field()) calibrating_.start(calibrate(prompts));
}

Task<LensDecision> LensDesk::decide(Prompts& prompts, LensCalibration found) {
  std::string text = other_size_text();
  if (!text.empty()) text += "\n";
  // With nothing corrected nothing is doubtful, and the ratio sends what it brings without a question.
  LensValues judged = values_;
  if (judged.ratio == 0) judged.ratio = 100;
  recompute_lens(found, judged);
  for (const std::string& warning : lens_warnings(found)) text += warning + "\n";
  if (!second_parameter_clamped(found)) {
    if (text.empty()) co_return LensDecision::send;
    const Answer answer =
        co_await prompts.ask(careful_question(text + "\nSend the parameters all the same?", "Calibration"));
    co_return answer == Answer::yes ? LensDecision::send : LensDecision::keep_old;
  }
  const PerColour alone = first_parameter_alone(found, judged.ratio);
  const auto ripple = [&](const PerColour& parameter1) {
    return fixed(lens_line_ripple(found, parameter1, found.fit.parameter2), 1) + " %";
  };
  text += "Parameter-2 came out below 0, which the chip cannot do, and became 0: a ripple of " +
          ripple(found.fit.parameter1) + " remains along the line. With Parameter-1 fitted alone it is " +
          fixed(lens_line_ripple(found, alone, {}), 1) + " %.";
  Question question;
  question.text = text;
  question.title = "Calibration";
  question.buttons = Question::Buttons::yes_no_cancel;
  question.preferred = Answer::cancel;
  question.yes_text = "Send as fitted";
  question.no_text = "Send Parameter-1 alone";
  question.cancel_text = "Keep the old";
  const Answer answer = co_await prompts.ask(std::move(question));
  if (answer == Answer::yes) co_return LensDecision::send;
  co_return answer == Answer::no ? LensDecision::send_first_alone : LensDecision::keep_old;
}

/// What is to be sent is the page's before it leaves: a step takes along what is sent after it was made.
Task<LensDecision> LensDesk::take_found(Prompts& prompts, const LensCalibration& found) {
  const LensDecision decision = co_await decide(prompts, found);
  if (decision == LensDecision::keep_old) co_return decision;
  const Changing change(*this, DeskChange::Kind::measured, "CALIBRATION");
  LensCalibration taken = found;
  taken.first_alone = decision == LensDecision::send_first_alone;
  recompute_lens(taken, values_);
  found_ = std::move(taken);
  co_return decision;
}

void LensDesk::press_check_field() {
  view().take_typed();
  stop_checking_ = checking_field();
  if (!calibrating() && !checking_field()) checking_.start(run_check_field());
}

Task<> LensDesk::run_check_field() {
  const bool arrived = co_await picker_.arrive();
  if (!arrived) co_return;
  const BusyScope busy(host());
  field_.clear();
  begin_sweep();
  allow_switch(false);
  lens_view_->show_field();
  host().show_status("Checking the field with the correction that the chip has. Press again to stop.");
  tell_other_size();
  const std::vector<PickerPosition> positions = field_positions(values_.screen_index);
  const std::size_t of = positions.size();
  std::function<bool(const PerColour&)> on_reading = [this, of](const PerColour& colour) {
    field_.push_back(colour);
    host().show_progress(static_cast<int>(field_.size() * 100 / of));
    lens_view_->show_field();
    return !stop_checking_;
  };
  std::function<void()> on_switch = [this] { picker_.tell_on_in_no_way(); };
  const std::string trouble =
      co_await check_field(link(), values_, positions, std::move(on_reading), std::move(on_switch));
  allow_switch(true);
  end_sweep(values_.picker_on);
  view().show_values();
  if (!trouble.empty()) {
    host().show_failure(trouble);
    co_return;
  }
  show_ripple();
}

void LensDesk::show_ripple() {
  std::string doubts;
  for (const std::string& warning : field_warnings(field_)) doubts += (doubts.empty() ? "" : " ") + warning;
  if (!doubts.empty()) {
    lens_view_->add_to_log(doubts + "\r\n");
    return host().show_failure("Check field says nothing: " + doubts);
  }
  const auto [red, green, blue] = field_ripple(field_);
  const std::string text = "Ripple of the whole picture: red " + fixed(red, 1) + " %, green " +
                           fixed(green, 1) + " %, blue " + fixed(blue, 1) + " %.";
  lens_view_->add_to_log(text + "\r\n");
  host().show_status(text);
}

Task<> LensDesk::calibrate(Prompts& prompts) {
  // A line that was typed in last is the one to measure along.
  const bool arrived = co_await picker_.arrive();
  if (!arrived) {
    picker_.want_keys(values_.picker_on);
    co_return;
  }
  if (picker_.chip_was_away()) {
    spawn(prompts.message({"Calibration stopped: " + std::string(kPickerChipWasAway)}));
    co_return;
  }
  lens_view_->clear_log();
  begin_sweep();
  calibration_ = {};
  calibration_.width = lens_line_width(values_.screen_index);
  lens_view_->show_calibration();
  host().show_status("Calibrating. Switch the color picker off to stop.");
  tell_other_size();
  const std::size_t positions = lens_positions(calibration_.width).size();
  std::function<void(const LensSample&)> on_sample = [this, positions](const LensSample& sample) {
    take_sample(sample, positions);
  };
  LensCalibrationResult result;
  {
    const BusyScope busy(host());
    std::function<Task<LensDecision>(const LensCalibration&)> asked =
        [this, &prompts](const LensCalibration& found) { return take_found(prompts, found); };
    result = co_await calibrate_lens(link(), values_, std::move(on_sample), std::move(asked));
  }
  Message complaint{result.message};
  finish(std::move(result));
  // Beside this flow, which is over: the ratio may move while the box is open.
  if (!complaint.text.empty()) spawn(prompts.message(std::move(complaint)));
}

void LensDesk::take_sample(const LensSample& sample, std::size_t of) {
  calibration_.samples.push_back(sample);
  const std::size_t taken = calibration_.samples.size();
  lens_view_->add_to_log(lens_sample_log(sample));
  lens_view_->show_calibration();
  host().show_progress(static_cast<int>(taken * 100 / of));
  // What follows the last position switches the picker off by itself.
  if (taken == of) allow_switch(false);
}

void LensDesk::finish(LensCalibrationResult result) {
  const int width = calibration_.width;
  found_.reset();
  calibration_ = std::move(result.calibration);
  calibration_.width = width;
  if (result.end == CalibrationEnd::done) declined_ = false;
  if (result.end == CalibrationEnd::declined) declined_ = true;
  lens_view_->add_to_log(result.log);
  view().show_values();
  allow_switch(true);
  end_sweep(result.end == CalibrationEnd::aborted || values_.picker_on);
  // An abort was a click on the switch, which says so itself.
  if (result.end == CalibrationEnd::aborted) return;
  if (!result.picker.empty()) {
    // It is no longer at it.
    host().show_status({});
    return host().show_failure_of(kAboutPicker, result.picker);
  }
  if (result.end == CalibrationEnd::declined)
    host().show_status("The parameters were not sent: the old ones are kept.");
  else
    host().show_status_of(kAboutPicker, kPickerOffStatus);
}

Task<> LensDesk::save(PageHost& files) {
  view().take_typed();
  // Before the file, which may have to be chosen: what is loaded meanwhile belongs neither there nor here.
  FullSave on_chip = full_save();
  const bool written = co_await files.save_everything();
  co_await send_save(std::move(on_chip), written ? "File save done" : kSavedOnChipOnly);
}

}  // namespace qv5123
