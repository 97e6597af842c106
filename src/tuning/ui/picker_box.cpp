#include "tuning/ui/picker_box.h"

#include <QLabel>
#include <QVBoxLayout>

#include <utility>

#include "base/delay.h"
#include "tuning/page_flows.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

QStringList step_items() {
  QStringList items;
  for (int index = 0; index < kMoveSteps; ++index) items << QString::number(move_step(index));
  return items;
}

}  // namespace

PickerBox::PickerBox(PageHost& host, Picker picker, Key key) : host_(host), picker_(std::move(picker)) {
  switch_ =
      make_check("Enable \nColor Picker", "Enable Color Picker",
                 "Shows the cursor in the picture and stops AE and AWB meanwhile, ISP registers 0xA20 and "
                 "0xA29, registers 0xA0 and 0xA1",
                 [this](bool on) { click_switch(on); });
  x_ = make_number(0, kPickerMaximumX, "X Pos", "0..2303 pixels, ISP registers 0xC38 and 0xC39");
  y_ = make_number(0, kPickerMaximumY, "Y Pos", "0..1535 pixels, ISP registers 0xC3A and 0xC3B");
  connect(x_, &QSpinBox::valueChanged, this, [this](int x) {
    picker_.position.x = x;
    x_typed_ = true;
    send_typed();
  });
  connect(y_, &QSpinBox::valueChanged, this, [this](int y) {
    picker_.position.y = y;
    y_typed_ = true;
    send_typed();
  });
  step_ = make_combo(step_items(), "Move Step", "1..128 pixels to a press of a key",
                     [this](int index) { picker_.step_index = index; });

  auto* group = new QGroupBox("Navigation Key");
  settings_ = new QGridLayout;
  settings_->setVerticalSpacing(2);
  settings_->addWidget(switch_, 0, 0, 2, 1);
  settings_->setColumnStretch(0, 1);
  add_row("X Pos:", x_);
  add_row("Y Pos:", y_);
  add_row("Move Step:", step_);
  last_setting_ = step_;
  keys_ = new QWidget;
  auto* key_grid = new QGridLayout(keys_);
  key_grid->setContentsMargins(0, 0, 0, 0);
  key_grid->setSpacing(3);
  make_keys(key_grid, std::move(key));
  auto* column = new QVBoxLayout(group);
  column->setContentsMargins(6, 2, 6, 6);
  column->addLayout(settings_);
  column->addWidget(keys_);
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(group);
  show_values();
  enable_keys(picker_.on);
}

void PickerBox::add_row(const QString& caption, QWidget* setting) {
  auto* label = new QLabel(caption);
  label->setBuddy(setting);
  settings_->addWidget(label, setting_rows_, 1, Qt::AlignRight | Qt::AlignVCenter);
  settings_->addWidget(setting, setting_rows_++, 2);
}

void PickerBox::add_setting(const QString& caption, QWidget* setting) {
  add_row(caption, setting);
  // It would come after the keys otherwise.
  setTabOrder(last_setting_, setting);
  last_setting_ = setting;
}

void PickerBox::make_keys(QGridLayout* grid, Key key) {
  add_arrow(grid, 0, 1, "UP", PickerMove::up);
  add_arrow(grid, 1, 0, "LEFT", PickerMove::left);
  grid->addWidget(make_button(key.caption, {}, key.tooltip, std::move(key.pressed)), 1, 1);
  add_arrow(grid, 1, 2, "RIGHT", PickerMove::right);
  add_arrow(grid, 2, 1, "DOWN", PickerMove::down);
}

void PickerBox::add_arrow(QGridLayout* grid, int row, int column, const QString& caption, PickerMove move) {
  const QString registers = moves_across(move) ? "0xC38 and 0xC39" : "0xC3A and 0xC3B";
  grid->addWidget(make_button(caption, {}, "Moves the cursor by the move step, ISP registers " + registers,
                              [this, move] { this->move(move); }),
                  row, column);
}

void PickerBox::show_values() {
  show_checked(switch_, picker_.on);
  show_value(x_, picker_.position.x);
  show_value(y_, picker_.position.y);
  show_index(step_, picker_.step_index);
}

void PickerBox::enable_keys(bool enabled) {
  keys_wanted_ = enabled;
  show_keys();
}

void PickerBox::show_keys() {
  const bool enabled = keys_wanted_ && !switching_chip_;
  // Qt would hand the focus of a disabled key on, and the next press of it would do something else.
  if (!enabled && keys_->isAncestorOf(window()->focusWidget())) {
    focused_key_ = window()->focusWidget();
    setFocus();
  }
  keys_->setEnabled(enabled);
  if (!enabled) return;
  QWidget* key = std::exchange(focused_key_, nullptr);
  if (key && window()->focusWidget() == this) key->setFocus();
  send_typed();
}

/// Brings the cursor to what was typed, unless something else moves it at present: then it waits, and where
/// the picker is switched off it needs no sending, for switching on does that.
void PickerBox::send_typed() {
  if (!typing_.running()) typing_.start(run_send_typed());
}

/// One position at a time: who spins fast gets to the last one without those before.
Task<> PickerBox::run_send_typed() {
  while (picker_.on && keys_->isEnabledTo(this) && (x_typed_ || y_typed_)) {
    if (std::exchange(y_typed_, false)) {
      co_await move_picker(host_.link(), picker_y_bytes(picker_.position.y));
    } else {
      x_typed_ = false;
      co_await move_picker(host_.link(), picker_x_bytes(picker_.position.x));
    }
  }
}

Task<> PickerBox::arrive() {
  while (typing_.running() || moves_.running()) co_await Delay(host_.scheduler(), CommandLink::kWideWait);
}

void PickerBox::move(PickerMove move) {
  take_typed_text(window());
  picker_.position = moved(picker_.position, move, picker_.step_index);
  show_values();
  moves_.spawn(send_move(moves_across(move) ? picker_x_bytes(picker_.position.x)
                                            : picker_y_bytes(picker_.position.y)));
}

Task<> PickerBox::send_move(IspBytes position) {
  co_await move_picker(host_.link(), std::move(position));
}

void PickerBox::click_switch(bool on) {
  take_typed_text(window());
  picker_.on = on;
  if (!switching_.running()) switching_.start(run_switch());
  emit switched();
}

/// One switch at a time, for the chip would end up in between: who changes his mind meanwhile waits. A chip
/// that did not follow is as it was, and so is the box then.
Task<> PickerBox::run_switch() {
  const BusyScope busy(host_);
  bool on = false;
  switching_chip_ = true;
  show_keys();
  do {
    on = picker_.on;
    connection_ = host_.link().connection();
    x_typed_ = y_typed_ = false;
    const std::string trouble = co_await picker_.switch_chip(on);
    if (trouble.empty()) {
      host_.show_status(on ? kPickerOnStatus : kPickerOffStatus);
    } else {
      host_.show_status(trouble);
      on = picker_.on = !on;
      emit switched();
    }
  } while (picker_.on != on);
  switching_chip_ = false;
  show_values();
  show_keys();
  emit settled();
}

}  // namespace qv5123
