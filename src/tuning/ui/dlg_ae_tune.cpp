#include "tuning/ui/dlg_ae_tune.h"

#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>

#include "base/delay.h"

namespace qv5123 {
namespace {

/// Lets the status line be painted before the save begins.
constexpr std::chrono::milliseconds kBeforeSave{100};

constexpr int kMirror = 1;
constexpr int kFlip = 2;

StepBank* selected_step_bank(DynamicValues& values) {
  const auto bank = selected_bank(values.ir_led, values.video_mode);
  return bank ? &values.banks[static_cast<std::size_t>(*bank)] : nullptr;
}

/// Rows that were typed but not set count as well. The others keep their bytes, also those that the limits of
/// the edits would change.
void take_step_grid(DynamicValues& values, const StepGrid& grid) {
  StepBank* bank = selected_step_bank(values);
  if (!bank) return;
  for (std::size_t row = 0; row < kStepRows; ++row) {
    if (grid[row] != decode_step_row(row, (*bank)[row])) (*bank)[row] = encode_step_row(row, grid[row]);
  }
}

}  // namespace

std::size_t CDlgAeTune::source() const {
  return static_cast<std::size_t>(source_choice_->checkedId());
}

StepBank* CDlgAeTune::shown_bank() {
  return selected_step_bank(values_);
}

void CDlgAeTune::take_grid() {
  take_step_grid(values_, grid_->grid());
}

void CDlgAeTune::show_values() {
  for (std::size_t i = 0; i < numbers_.size(); ++i) numbers_[i].show(values_.*kDynamicNumbers[i].value);
  show_orientation();
  show_source();
  hue_.show(values_.hue_angle);
  // What is kept of it is the position of the bar.
  values_.dpc_decision = std::clamp(values_.dpc_decision, kDpcRange.lowest, kDpcRange.highest);
  dpc_.show(values_.dpc_decision);
  show_index(smart_ir_, values_.smart_ir);
  show_checked(ir_led_, values_.ir_led);
  show_index(video_mode_, values_.video_mode);
  show_bank();
}

void CDlgAeTune::show_orientation() {
  show_checked(mirror_, values_.orientation & kMirror);
  show_checked(flip_, values_.orientation & kFlip);
  show_checked(none_, (values_.orientation & (kMirror | kFlip)) == 0);
}

void CDlgAeTune::show_source() {
  show_light_source();
  saturation_.show(values_.saturation[source()]);
  r_weight_.show(values_.weights[source()].r);
  b_weight_.show(values_.weights[source()].b);
}

void CDlgAeTune::show_light_source() {
  const LightSource& record = values_.light_sources[source()];
  const QSignalBlocker quiet(sum_bar_);
  sum_bar_->setValue(light_source_bar(record));
  // A file may hold a kind that is not known; the edit takes it until the user changes it.
  const QSignalBlocker kind_quiet(sum_kind_);
  sum_kind_->setMaximum(std::max(kHighestLightSourceKind, record.kind));
  sum_kind_->setValue(record.kind);
  show_value(sum_value_, record.value);
}

/// A video format that no bank belongs to leaves nothing to edit.
void CDlgAeTune::show_bank() {
  const StepBank* bank = shown_bank();
  grid_->setEnabled(bank != nullptr);
  if (bank) grid_->show_bank(*bank);
}

void CDlgAeTune::set_number(std::size_t number) {
  take_typed_text(this);
  if (number < kGainCount)
    spawn(set_gain(number));
  else
    link().send(number_write(values_, kDynamicNumbers[number]));
}

Task<> CDlgAeTune::set_gain(std::size_t number) {
  const DynamicNumber& gain = kDynamicNumbers[number];
  Question question;
  question.text = kGainQuestion;
  question.title = kGainQuestionTitle;
  const Answer answer = co_await host().prompts().ask(std::move(question));
  if (answer == Answer::yes) {
    link().send(number_write(values_, gain));
    co_return;
  }
  // It is the bar that is put back, and a bar has no place outside its range.
  values_.*gain.value =
      std::clamp<int>(document().user_data.entry(gain.entry), gain.range.lowest, gain.range.highest);
  take_grid();
  show_values();
}

void CDlgAeTune::set_step_row(std::size_t row) {
  const auto bank = selected_bank(values_.ir_led, values_.video_mode);
  if (!bank) return;
  StepRowWrite written = write_step_row(*bank, row, grid_->cells(row));
  values_.banks[static_cast<std::size_t>(*bank)][row] = written.bytes;
  grid_->show_row(row, written.bytes);
  link().send(std::move(written.traffic));
  spawn(tell(std::move(written.messages)));
}

Task<> CDlgAeTune::tell(std::vector<StepMessage> messages) {
  for (const StepMessage& told : messages) {
    message_edit_->appendPlainText(QString::fromStdString(told.title + ": " + told.text));
    Message message;
    message.text = told.text;
    message.title = told.title;
    message.icon = Message::Icon::stop;
    co_await host().prompts().message(std::move(message));
  }
}

void CDlgAeTune::set_weights() {
  take_typed_text(this);
  limit_weights(values_);
  show_source();
  link().send(weights_write(values_, source()));
}

void CDlgAeTune::change_orientation(bool mirror, bool flip) {
  values_.orientation = (mirror ? kMirror : 0) | (flip ? kFlip : 0);
  show_orientation();
  document().user_data.set_entry(kOrientationEntry, values_.orientation);
  spawn(send_orientation());
}

Task<> CDlgAeTune::send_orientation() {
  Traffic traffic = orientation_traffic(values_);
  co_await host().write_user_data_file();
  link().send(std::move(traffic));
}

void CDlgAeTune::load_from_file() {
  reload_from_user_data();
  host().show_status("Load File ok");
}

void CDlgAeTune::load_from_isp() {
  load({kDynamicQuery, "AE_Tune Data Load Fail...", "Load Isp ok", [this](std::string_view reply) {
          take_typed_text(this);
          const auto loaded = decode_dynamic_reply(reply, values_);
          if (!loaded) return false;
          values_ = *loaded;
          show_values();
          video_mode_->setEnabled(!values_.ir_led);
          return true;
        }});
}

Task<> CDlgAeTune::run_save() {
  host().show_status("AE_Tune Data Saving...");
  co_await Delay(host().scheduler(), kBeforeSave);
  take_typed_text(this);
  DynamicSave all = dynamic_save(values_, grid_->grid(), document().user_data);
  values_ = all.values;
  show_values();
  spawn(tell(std::move(all.messages)));
  PageSave save;
  save.traffic = std::move(all.traffic);
  save.done = "Data Save Done...";
  save.settling = kFlashStoreTime;
  co_await save_on_chip(host(), std::move(save));
}

void CDlgAeTune::save_to_user_data() {
  take_typed_text(this);
  take_grid();
  qv5123::save_to_user_data(values_, document().user_data);
}

void CDlgAeTune::put_values(UserDataImage& image) const {
  DynamicValues values = values_;
  take_step_grid(values, grid_->shown_grid());
  qv5123::save_to_user_data(values, image);
}

void CDlgAeTune::reload_from_user_data() {
  qv5123::reload_from_user_data(values_, document().user_data);
  show_values();
}

void CDlgAeTune::chosen_again() {
  take_typed_text(this);
  take_grid();
  show_values();
}

}  // namespace qv5123
