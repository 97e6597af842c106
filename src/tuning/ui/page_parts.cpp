#include "tuning/ui/page_parts.h"

#include <QFontMetrics>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

namespace qv5123 {

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
  return button;
}

QSpinBox* make_number(int minimum, int maximum, const QString& name, const QString& tooltip) {
  auto* box = named(new QSpinBox, name, tooltip);
  box->setRange(minimum, maximum);
  box->setKeyboardTracking(false);
  return box;
}

void show_value(QSpinBox* box, int value) {
  const QSignalBlocker quiet(box);
  box->setValue(value);
}

void show_checked(QAbstractButton* button, bool checked) {
  const QSignalBlocker quiet(button);
  button->setChecked(checked);
}

void SliderRow::show(int value) {
  const QSignalBlocker quiet(slider);
  slider->setValue(value);
  show_value(edit, value);
}

SliderRow add_slider_row(QGridLayout* grid, int row, const QString& caption, int minimum, int maximum,
                         const QString& tooltip, std::function<void()> set,
                         std::function<void(int)> changed) {
  SliderRow parts;
  auto* label = new QLabel(caption);
  parts.slider = named(new QSlider(Qt::Horizontal), caption + " bar", tooltip);
  parts.slider->setRange(minimum, maximum);
  parts.edit = make_number(minimum, maximum, caption, tooltip);
  label->setBuddy(parts.edit);
  QObject::connect(parts.slider, &QSlider::valueChanged, parts.edit, &QSpinBox::setValue);
  QObject::connect(parts.edit, &QSpinBox::valueChanged, parts.slider, [parts, changed](int value) {
    const QSignalBlocker quiet(parts.slider);
    parts.slider->setValue(value);
    if (changed) changed(value);
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
