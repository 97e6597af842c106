#pragma once

#include <QPushButton>
#include <QVariant>

/// What a page tells of its controls for whoever puts the window together: they are marked, not known by
/// name.
namespace qv5123 {

inline constexpr const char* kKeptChoice = "kept-choice";
inline constexpr const char* kCommand = "command";
inline constexpr const char* kUnfolds = "unfolds";
inline constexpr const char* kSetsTheEditsBeside = "sets-the-edits-beside";

/// The commands that the main window has a key for.
inline constexpr const char* kLoadCommand = "load";  ///< reads the page from the chip
inline constexpr const char* kReadCommand =
    "read";  ///< reads again what is looked at; without one, as kLoadCommand
inline constexpr const char* kSaveCommand = "save";  ///< sends the page for the chip to keep

/// Marks a control whose state is the user's own choice and no value of the chip: it is kept from run to run
/// by its accessible name, which must not change. Check boxes, lists, number edits, line edits, headers and
/// splitters can be kept.
template <class Widget>
Widget* keep_choice(Widget* widget) {
  widget->setProperty(kKeptChoice, true);
  return widget;
}

/// Marks the check box that shows more of its page.
template <class Widget>
Widget* mark_unfolds(Widget* widget) {
  widget->setProperty(kUnfolds, true);
  return widget;
}

/// Marks the button that does one of the commands above on its page.
inline QPushButton* mark_command(QPushButton* button, const char* command) {
  button->setProperty(kCommand, QByteArray(command));
  return button;
}

/// Shows another caption and keeps the key that was given to the button, where the caption still has that
/// letter.
inline void set_caption(QAbstractButton* button, const QString& caption) {
  const qsizetype mark = button->text().indexOf(u'&');
  const qsizetype place =
      mark < 0 ? -1 : caption.indexOf(button->text().mid(mark + 1, 1), 0, Qt::CaseInsensitive);
  button->setText(place < 0 ? caption : QString(caption).insert(place, u'&'));
}

/// Marks a "S" or "Set": the return key in an edit beside it, in the same row of its layout, does what it
/// does.
inline QPushButton* mark_set(QPushButton* button) {
  button->setProperty(kSetsTheEditsBeside, true);
  return button;
}

}  // namespace qv5123
