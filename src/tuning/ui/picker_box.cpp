#include "tuning/ui/picker_box.h"

#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace qv5123 {
namespace {

/// Of an arrow that is held down, milliseconds: no faster than the chip takes the cursor's places.
constexpr int kRepeatDelay = 400;
constexpr int kRepeatInterval = 250;

QStringList step_items() {
  QStringList items;
  for (int index = 0; index < kMoveSteps; ++index) items << QString::number(move_step(index));
  return items;
}

}  // namespace

PickerBox::PickerBox(PickerDesk& desk, Key key) : desk_(desk) {
  switch_ =
      make_check("Enable \nColor Picker", "Enable Color Picker",
                 "Shows the cursor in the picture and stops AE and AWB meanwhile, ISP registers 0xA20 and "
                 "0xA29, registers 0xA0 and 0xA1",
                 [this](bool on) { desk_.click_switch(on); });
  x_ = make_number(0, kPickerMaximumX, "X Pos", "0..2303 pixels, ISP registers 0xC38 and 0xC39");
  y_ = make_number(0, kPickerMaximumY, "Y Pos", "0..1535 pixels, ISP registers 0xC3A and 0xC3B");
  connect(x_, &QSpinBox::valueChanged, this, [this](int x) { desk_.type_x(x); });
  connect(y_, &QSpinBox::valueChanged, this, [this](int y) { desk_.type_y(y); });
  step_ = make_combo(step_items(), "Move Step", "1..128 pixels to a press of a key",
                     [this](int index) { desk_.choose_step(index); });

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
  desk_.attach(*this);
  show_picker();
  show_keys();
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
  caption_ = key.caption;
  middle_ = make_button(key.caption, {}, key.tooltip, std::move(key.pressed));
  grid->addWidget(middle_, 1, 1);
  add_arrow(grid, 1, 2, "RIGHT", PickerMove::right);
  add_arrow(grid, 2, 1, "DOWN", PickerMove::down);
}

void PickerBox::add_arrow(QGridLayout* grid, int row, int column, const QString& caption, PickerMove move) {
  const QString registers = moves_across(move) ? "0xC38 and 0xC39" : "0xC3A and 0xC3B";
  auto* arrow = make_button(caption, {}, "Moves the cursor by the move step, ISP registers " + registers,
                            [this, move] { desk_.move(move); });
  arrow->setAutoRepeat(true);
  arrow->setAutoRepeatDelay(kRepeatDelay);
  arrow->setAutoRepeatInterval(kRepeatInterval);
  arrows_.push_back(arrow);
  grid->addWidget(arrow, row, column);
}

void PickerBox::show_picker() {
  show_checked(switch_, desk_.on());
  show_value(x_, desk_.position().x);
  show_value(y_, desk_.position().y);
  show_index(step_, desk_.step_index());
}

void PickerBox::show_keys() {
  // A measurement takes no arrows, but further presses of the key between them.
  for (QPushButton* arrow : arrows_) arrow->setEnabled(!desk_.measuring());
  show_caption(middle_, desk_.measuring() ? caption_ + " ..." : caption_);
  const bool enabled = desk_.keys_enabled() || desk_.measuring();
  // Qt would hand the focus of a disabled key on, and the next press of it would do something else.
  if (!enabled && keys_->isAncestorOf(window()->focusWidget())) {
    focused_key_ = window()->focusWidget();
    setFocus();
  }
  keys_->setEnabled(enabled);
  if (!enabled) return;
  QWidget* key = std::exchange(focused_key_, nullptr);
  if (key && window()->focusWidget() == this) key->setFocus();
}

}  // namespace qv5123
