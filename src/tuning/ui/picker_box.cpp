#include "tuning/ui/picker_box.h"

#include <QLabel>
#include <QVBoxLayout>

#include <utility>

#include "base/ui/page_marks.h"
#include "tuning/ui/field_edits.h"

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

QSpinBox* make_position(int maximum, const QString& name, int first_register) {
  return make_number(
      0, maximum, name,
      QString("0..%1 pixels, ISP %2").arg(maximum).arg(registers_text({first_register, first_register + 1})));
}

}  // namespace

PickerBox::PickerBox(PickerDesk& desk, Key key, const std::vector<int>& switched) : desk_(desk) {
  switch_ = make_check("Enable \nColor Picker", "Enable Color Picker",
                       "Shows the cursor in the picture and stops AE and AWB meanwhile, ISP " +
                           registers_text(switched) + ", " + registers_text({reg::kAeTask, reg::kAwbTask}),
                       [this](bool on) { desk_.click_switch(on); });
  x_ = make_position(kPickerMaximumX, "X Pos", picker_register::kX);
  y_ = make_position(kPickerMaximumY, "Y Pos", picker_register::kY);
  connect(x_, &QSpinBox::valueChanged, this, [this](int x) { desk_.type_x(x); });
  connect(y_, &QSpinBox::valueChanged, this, [this](int y) { desk_.type_y(y); });
  step_ = keep_choice(make_combo(step_items(), "Move Step", "1..128 pixels to a press of a key",
                                 [this](int index) { desk_.choose_step(index); }));

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
  const int first = moves_across(move) ? picker_register::kX : picker_register::kY;
  auto* arrow =
      make_button(caption, {}, "Moves the cursor by the move step, ISP " + registers_text({first, first + 1}),
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
  set_caption(middle_, desk_.measuring() ? caption_ + " ..." : caption_);
  switch_->setEnabled(desk_.switch_enabled());
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
