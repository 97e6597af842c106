#include "tuning/ui/page_parts.h"

#include <QEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

/// Where the screen is narrow; elsewhere it has the room that is left.
constexpr int kNarrowestSlider = 20;

class WheelGuard : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::Wheel || !widget || widget->hasFocus()) return false;
    event->ignore();
    return true;
  }
};

}  // namespace

QPushButton* make_button(const QString& caption, const QString& name, const QString& tooltip,
                         std::function<void()> clicked) {
  auto* button = named(new QPushButton(caption), name.isEmpty() ? caption : name, tooltip);
  QObject::connect(button, &QPushButton::clicked, button, [clicked = std::move(clicked)] { clicked(); });
  return button;
}

QPushButton* make_set_button(const QString& caption, const QString& value, const QString& tooltip,
                             std::function<void()> clicked) {
  QPushButton* button = make_button(caption, value + " " + caption, tooltip, std::move(clicked));
  button->setMaximumWidth(button->fontMetrics().horizontalAdvance(caption) + 24);
  return mark_set(button);
}

QSpinBox* make_number(int minimum, int maximum, const QString& name, const QString& tooltip) {
  auto* box = named(new NumberEdit(minimum, maximum), name, tooltip);
  keep_wheel_from(box);
  return box;
}

QCheckBox* make_check(const QString& caption, const QString& name, const QString& tooltip,
                      std::function<void(bool)> toggled) {
  auto* box = named(new QCheckBox(caption), name.isEmpty() ? caption : name, tooltip);
  // Assistive technology toggles without a click.
  QObject::connect(box, &QCheckBox::toggled, box, std::move(toggled));
  return box;
}

void on_choice(QButtonGroup* group, std::function<void(int)> chosen) {
  QObject::connect(group, &QButtonGroup::idToggled, group,
                   [chosen = std::move(chosen)](int id, bool checked) {
                     if (checked) chosen(id);
                   });
}

QComboBox* make_combo(const QStringList& items, const QString& name, const QString& tooltip,
                      std::function<void(int)> chosen) {
  auto* combo = named(new QComboBox, name, tooltip);
  combo->addItems(items);
  QObject::connect(combo, &QComboBox::currentIndexChanged, combo, std::move(chosen));
  keep_wheel_from(combo);
  return combo;
}

QLabel* centred(const QString& text) {
  auto* label = new QLabel(text);
  label->setAlignment(Qt::AlignCenter);
  return label;
}

void keep_wheel_from(QWidget* widget) {
  widget->setFocusPolicy(Qt::StrongFocus);
  widget->installEventFilter(new WheelGuard(widget));
}

void show_value(QSpinBox* box, int value) {
  const QSignalBlocker quiet(box);
  box->setValue(value);
}

void show_checked(QAbstractButton* button, bool checked) {
  const QSignalBlocker quiet(button);
  button->setChecked(checked);
}

void show_choice(QButtonGroup* group, int id) {
  const QSignalBlocker quiet(group);
  if (QAbstractButton* button = group->button(id)) button->setChecked(true);
}

void show_index(QComboBox* combo, int index) {
  const QSignalBlocker quiet(combo);
  combo->setCurrentIndex(index >= 0 && index < combo->count() ? index : -1);
}

QGroupBox* make_file_control(FileControl control) {
  auto* group = new QGroupBox("File Control");
  auto* column = new QVBoxLayout(group);
  column->setContentsMargins(6, 6, 6, 2);
  column->setSpacing(2);
  auto* row = new QHBoxLayout;
  column->addLayout(row);
  row->setSpacing(4);
  row->addWidget(make_button("Load <- File", {}, "Takes the page's values from the setting file's data",
                             std::move(control.load_file)));
  QPushButton* load = make_button("Load <- ISP", {}, control.isp_tooltip, std::move(control.load_isp));
  row->addWidget(mark_command(load, kLoadCommand));
  QPushButton* save = make_button("File/Flash Save", {}, control.save_tooltip, std::move(control.save));
  row->addWidget(mark_command(save, kSaveCommand));
  if (control.note) column->addWidget(control.note);
  return group;
}

QPlainTextEdit* make_log(const QString& name, const QString& tooltip) {
  // As many lines as the main console has.
  constexpr int kLines = 10240;
  auto* log = named(new QPlainTextEdit, name, tooltip);
  log->setReadOnly(true);
  log->setTabChangesFocus(true);
  log->setMaximumBlockCount(kLines);
  return log;
}

void take_typed_text(QWidget* page) {
  // Not only where the focus is: assistive tools set text anywhere.
  for (auto* box : page->findChildren<QAbstractSpinBox*>()) box->interpretText();
}

void SliderRow::show(int value) {
  const QSignalBlocker quiet(slider);
  slider->setValue(value);
  const QSignalBlocker edit_quiet(edit);
  edit->setRange(std::min(slider->minimum(), value), std::max(slider->maximum(), value));
  edit->setValue(value);
}

SliderRow add_slider_row(QGridLayout* grid, int row, const QString& caption, int minimum, int maximum,
                         const QString& tooltip, std::function<void()> set,
                         std::function<void(int)> changed) {
  SliderRow parts;
  auto* label = new QLabel(caption);
  parts.slider = named(new QSlider(Qt::Horizontal), caption + " bar", tooltip);
  parts.slider->setRange(minimum, maximum);
  parts.slider->setMinimumWidth(kNarrowestSlider);
  keep_wheel_from(parts.slider);
  parts.edit = make_number(minimum, maximum, caption, tooltip);
  label->setBuddy(parts.edit);
  QObject::connect(parts.slider, &QSlider::valueChanged, parts.edit, &QSpinBox::setValue);
  QObject::connect(parts.edit, &QSpinBox::valueChanged, parts.slider, [parts, changed](int value) mutable {
    parts.show(std::clamp(value, parts.slider->minimum(), parts.slider->maximum()));
    if (changed) changed(parts.value());
  });
  grid->addWidget(label, row, 0);
  grid->addWidget(parts.slider, row, 1);
  grid->addWidget(parts.edit, row, 2);
  if (set) {
    parts.set = make_set_button("Set", caption, tooltip, std::move(set));
    grid->addWidget(parts.set, row, 3);
  }
  return parts;
}

}  // namespace qv5123
