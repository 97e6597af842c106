#pragma once

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QString>

#include <functional>

#include "base/ui/controls.h"
#include "base/ui/number_edit.h"

/// The controls that the pages are put together from, each with its accessible name, which is unique on its
/// page, and a tooltip that tells range, unit and register.
namespace qv5123 {

/// Gives `widget` its accessible name and tooltip.
template <class Widget>
Widget* named(Widget* widget, const QString& name, const QString& tooltip) {
  widget->setAccessibleName(name);
  widget->setToolTip(tooltip);
  return widget;
}

/// A push button. `name` is its accessible name where the caption repeats on the page; empty takes the
/// caption.
QPushButton* make_button(const QString& caption, const QString& name, const QString& tooltip,
                         std::function<void()> clicked);

/// A narrow "S" or "Set" beside the value called `value`.
QPushButton* make_set_button(const QString& caption, const QString& value, const QString& tooltip,
                             std::function<void()> clicked);

/// A NumberEdit for `minimum`..`maximum`.
QSpinBox* make_number(int minimum, int maximum, const QString& name, const QString& tooltip);

/// A check box that tells when it was switched, by whatever means, but for show_checked().
QCheckBox* make_check(const QString& caption, const QString& name, const QString& tooltip,
                      std::function<void(bool checked)> toggled);

/// Tells which button of `group` was chosen, by whatever means, but for show_choice().
void on_choice(QButtonGroup* group, std::function<void(int id)> chosen);

/// A drop-down list that tells the user's choices.
QComboBox* make_combo(const QStringList& items, const QString& name, const QString& tooltip,
                      std::function<void(int index)> chosen);

/// A read-only text that grows line by line, up to a length that no memory minds.
QPlainTextEdit* make_log(const QString& name, const QString& tooltip);

/// The captions of a table as list items.
template <class Captions>
QStringList items_of(const Captions& captions) {
  QStringList items;
  for (const char* caption : captions) items << QString::fromUtf8(caption);
  return items;
}

/// A heading above what it names.
QLabel* centred(const QString& text);

/// Lets `widget` take the mouse wheel only while it has the focus, so that rolling the page changes nothing
/// on the chip.
void keep_wheel_from(QWidget* widget);

/// Sets a value without the widget telling that it changed.
void show_value(QSpinBox* box, int value);
void show_checked(QAbstractButton* button, bool checked);
/// The same for the button of that number.
void show_choice(QButtonGroup* group, int id);
/// Nothing is selected where the list has no such index.
void show_index(QComboBox* combo, int index);

/// What the buttons of the "File Control" group do, and what their tooltips say of the registers.
struct FileControl {
  std::function<void()> load_file;
  std::function<void()> load_isp;
  std::function<void()> save;
  QString isp_tooltip;
  QString save_tooltip;
  QLabel* note = nullptr;  ///< below the buttons
};
QGroupBox* make_file_control(FileControl control);

/// Takes what is being typed anywhere on `page` as if Enter had been pressed.
void take_typed_text(QWidget* page);

/// A horizontal slider, its edit, both showing the same value, and a "Set" button.
struct SliderRow {
  class QSlider* slider = nullptr;
  QSpinBox* edit = nullptr;
  QPushButton* set = nullptr;  ///< null where nothing is sent on its own

  int value() const { return edit->value(); }
  /// Shows a value that was loaded, also one outside the range, which the edit then takes as well until the
  /// user changes it.
  void show(int value);
};

/// Adds a row of label, slider, edit and "Set" to `grid`. `caption` names all of them; without `set` no
/// button is made. `changed` is told every change by the user and may be empty.
SliderRow add_slider_row(QGridLayout* grid, int row, const QString& caption, int minimum, int maximum,
                         const QString& tooltip, std::function<void()> set,
                         std::function<void(int)> changed = {});

}  // namespace qv5123
