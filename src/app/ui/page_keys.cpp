#include "app/ui/page_keys.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <map>
#include <vector>

#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

/// The letters of `text` in the order in which they serve: beginnings of words, then all others.
std::vector<QChar> letters_of(const QString& text) {
  std::vector<QChar> letters;
  for (const bool beginnings : {true, false}) {
    for (qsizetype i = 0; i < text.size(); ++i) {
      const bool begins = i == 0 || !text[i - 1].isLetterOrNumber();
      const bool serves = text[i].isLetterOrNumber() && text[i].unicode() <= 0x7F;
      if (serves && begins == beginnings) letters.push_back(text[i].toUpper());
    }
  }
  return letters;
}

/// Hands out letters, to as many buttons as it can: who has one takes another where that helps the next. None
/// that has one is left without for a later one.
class Letters {
 public:
  explicit Letters(const QSet<QChar>& reserved) : reserved_(reserved) {}

  void give(QAbstractButton* button) {
    QSet<QChar> tried = reserved_;
    find_for(button, tried);
  }
  void show() const {
    for (const auto& [letter, button] : owners_) {
      button->setProperty(kLetter, letter);
      set_caption(button, button->text());
    }
  }

 private:
  bool find_for(QAbstractButton* button, QSet<QChar>& tried) {
    const std::vector<QChar> letters = letters_of(button->text());
    for (const QChar letter : letters)
      if (!tried.contains(letter) && owners_.try_emplace(letter, button).second) return true;
    for (const QChar letter : letters) {
      if (tried.contains(letter)) continue;
      tried.insert(letter);
      if (!find_for(owners_[letter], tried)) continue;
      owners_[letter] = button;
      return true;
    }
    return false;
  }

  const QSet<QChar> reserved_;
  std::map<QChar, QAbstractButton*> owners_;
};

/// "S" and "Set" repeat; the return key presses them.
bool wants_mnemonic(const QAbstractButton& button) {
  return button.text().size() > 1 && !button.text().contains(u'&') &&
         !button.property(kSetsTheEditsBeside).toBool();
}

bool is_push(const QAbstractButton* button) {
  return qobject_cast<const QPushButton*>(button) != nullptr;
}

/// Of the window, which has one for them on every page.
bool has_key(const QAbstractButton* button) {
  const QByteArray command = button->property(kCommand).toByteArray();
  return command == kLoadCommand || command == kSaveCommand;
}

/// Those with which labels go to their edits.
QSet<QChar> letters_of_labels(const QWidget& page) {
  QSet<QChar> letters;
  for (const QLabel* label : page.findChildren<QLabel*>()) {
    const QKeySequence key = QKeySequence::mnemonic(label->text());
    if (label->buddy() && !key.isEmpty()) letters.insert(key.toString().back());
  }
  return letters;
}

/// Keeps what the return key does at the end of an edit's tool tip, whatever else comes to stand there.
class ReturnTip final : public QObject {
 public:
  ReturnTip(QWidget* edit, const QString& caption)
      : QObject(edit), text_(QStringLiteral(". Return: \"%1\"").arg(caption)) {
    edit->installEventFilter(this);
    complete(edit);
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::ToolTipChange) complete(static_cast<QWidget*>(watched));
    return false;
  }

 private:
  void complete(QWidget* edit) const {
    const QString tip = edit->toolTip().remove(text_) + text_;
    if (tip != edit->toolTip()) edit->setToolTip(tip);
  }

  const QString text_;
};

/// The line edit in which the return key is pressed; null where nothing is typed.
QLineEdit* edit_in(QWidget* widget) {
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) return edit;
  return qobject_cast<QAbstractSpinBox*>(widget) ? widget->findChild<QLineEdit*>() : nullptr;
}

void collect(QLayoutItem* item, QList<QWidget*>& widgets) {
  if (item->widget()) widgets << item->widget();
  for (int i = 0; item->layout() && i < item->layout()->count(); ++i)
    collect(item->layout()->itemAt(i), widgets);
}

/// The layout that holds `widget`, somewhere in `layout`.
QLayout* layout_with(QLayout* layout, QWidget* widget) {
  if (!layout) return nullptr;
  if (layout->indexOf(widget) >= 0) return layout;
  for (int i = 0; i < layout->count(); ++i) {
    if (QLayout* found = layout_with(layout->itemAt(i)->layout(), widget)) return found;
  }
  return nullptr;
}

struct Rows {
  int first = 0, last = 0;
};

Rows rows_of(QGridLayout* grid, int item) {
  int row = 0, column = 0, row_span = 0, column_span = 0;
  grid->getItemPosition(item, &row, &column, &row_span, &column_span);
  return {row, row + row_span - 1};
}

/// What stands in the same row, or rows, as the button.
QList<QWidget*> widgets_beside(QPushButton* button) {
  QList<QWidget*> beside;
  QLayout* layout = layout_with(button->parentWidget()->layout(), button);
  if (!layout) return beside;
  auto* grid = qobject_cast<QGridLayout*>(layout);
  const Rows rows = grid ? rows_of(grid, grid->indexOf(button)) : Rows{};
  for (int i = 0; i < layout->count(); ++i) {
    const Rows other = grid ? rows_of(grid, i) : rows;
    if (other.first <= rows.last && other.last >= rows.first) collect(layout->itemAt(i), beside);
  }
  return beside;
}

}  // namespace

void give_mnemonics(QWidget& page, const QString& reserved) {
  Letters letters(QSet<QChar>(reserved.begin(), reserved.end()) + letters_of_labels(page));
  const QList<QAbstractButton*> all = page.findChildren<QAbstractButton*>();
  const auto give_to = [&](auto is_kind) {
    for (QAbstractButton* button : all)
      if (is_kind(button) && wants_mnemonic(*button)) letters.give(button);
  };
  // Where letters are short, buttons that the window has a key for go last, before check boxes, which the tab
  // key reaches as well.
  give_to([](QAbstractButton* button) { return is_push(button) && !has_key(button); });
  give_to([](QAbstractButton* button) { return is_push(button) && has_key(button); });
  give_to([](QAbstractButton* button) { return qobject_cast<QCheckBox*>(button) != nullptr; });
  letters.show();
}

void let_return_set(QWidget& page) {
  for (QPushButton* button : page.findChildren<QPushButton*>()) {
    if (!button->property(kSetsTheEditsBeside).toBool()) continue;
    for (QWidget* widget : widgets_beside(button)) {
      QLineEdit* edit = edit_in(widget);
      if (!edit || edit->isReadOnly()) continue;
      QObject::connect(edit, &QLineEdit::returnPressed, button, &QAbstractButton::click);
      new ReturnTip(widget, button->text());
    }
  }
}

}  // namespace qv5123
