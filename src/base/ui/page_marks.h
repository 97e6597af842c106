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
/// The letter that presses a button with Alt.
inline constexpr const char* kLetter = "letter";

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

/// Shows a caption, with the key that was given to the button wherever the caption has that letter: one that
/// has not does not take it away from the next.
inline void set_caption(QAbstractButton* button, QString caption) {
  const QChar letter = button->property(kLetter).toChar();
  const qsizetype place = letter.isNull() ? -1 : caption.indexOf(letter, 0, Qt::CaseInsensitive);
  if (place >= 0) caption.insert(place, u'&');
  if (caption != button->text()) button->setText(caption);
}

/// Marks a "S" or "Set": the return key in an edit beside it, in the same row of its layout, does what it
/// does.
inline QPushButton* mark_set(QPushButton* button) {
  button->setProperty(kSetsTheEditsBeside, true);
  return button;
}

}  // namespace qv5123
