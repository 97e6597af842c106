#include "tuning/ui/dlg_ae_tune.h"

#include <QSignalBlocker>
#include <optional>

#include "tuning/ui/mark_strip.h"

namespace qv5123 {

void CDlgAeTune::show_values() {
  edits_.show();
  show_choice(source_choice_, static_cast<int>(desk_.source()));
  show_light_source_bar();
  show_orientation();
  show_bank();
}

/// Those that are no edits of one value each are marked here.
void CDlgAeTune::show_marks(const std::vector<ValueMark>& marks) {
  edits_.show_marks(marks);
  const DynamicValues& values = desk_.values();
  for (QCheckBox* box : {mirror_, flip_}) MarkStrip::show_mark(box, marks[desk_.field(values.orientation)]);
  MarkStrip::show_mark(ir_led_, marks[desk_.field(values.ir_led)]);
  MarkStrip::show_mark(video_mode_, marks[desk_.field(values.video_mode)]);
}

void CDlgAeTune::show_orientation() {
  const int orientation = desk_.values().orientation;
  show_checked(mirror_, orientation & kMirror);
  show_checked(flip_, orientation & kFlip);
  show_checked(none_, (orientation & (kMirror | kFlip)) == 0);
}

void CDlgAeTune::show_light_source_bar() {
  const QSignalBlocker quiet(sum_bar_);
  sum_bar_->setValue(light_source_bar(desk_.values().light_sources[desk_.source()]));
}

/// A video format that no bank belongs to leaves nothing to edit.
void CDlgAeTune::show_bank() {
  show_checked(ir_led_, desk_.values().ir_led);
  show_index(video_mode_, desk_.values().video_mode);
  video_mode_->setEnabled(desk_.video_mode_enabled());
  grid_->setEnabled(desk_.bank().has_value());
}

void CDlgAeTune::choose_value(std::size_t field) {
  const int control = desk_.model().fields()[field].sent_by;
  const auto place_of = [control](DynamicControl first, std::size_t count) -> std::optional<std::size_t> {
    const int place = control - static_cast<int>(first);
    if (place < 0 || place >= static_cast<int>(count)) return std::nullopt;
    return static_cast<std::size_t>(place);
  };
  for (const DynamicControl first :
       {DynamicControl::light_source, DynamicControl::saturation, DynamicControl::weights}) {
    if (const auto source = place_of(first, kLightSources))
      source_choice_->button(static_cast<int>(*source))->setChecked(true);
  }
  if (const auto row = place_of(DynamicControl::step_row, kStepRows * kStepBanks))
    choose_bank(static_cast<BankId>(*row / kStepRows));
}

/// By the page's own controls.
void CDlgAeTune::choose_bank(BankId bank) {
  ir_led_->setChecked(bank == BankId::ir_led);
  for (int mode = 0; mode < video_mode_->count(); ++mode)
    if (selected_bank(false, mode) == bank) video_mode_->setCurrentIndex(mode);
}

void CDlgAeTune::add_message(const std::string& text) {
  message_edit_->appendPlainText(QString::fromStdString(text));
}

void CDlgAeTune::chosen_again() {
  take_typed();
  show_values();
}

}  // namespace qv5123
