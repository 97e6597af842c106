#include "app/ui/page_keys.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <algorithm>
#include <vector>

#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

/// The places in `text` in the order in which they serve: beginnings of words, then all others.
std::vector<qsizetype> letters_of(const QString& text) {
  std::vector<qsizetype> places;
  for (const bool beginnings : {true, false}) {
    for (qsizetype i = 0; i < text.size(); ++i) {
      const bool begins = i == 0 || !text[i - 1].isLetterOrNumber();
      if (text[i].isLetterOrNumber() && begins == beginnings) places.push_back(i);
    }
  }
  return places;
}

void give_mnemonic(QAbstractButton& button, QSet<QChar>& taken) {
  const QString text = button.text();
  for (const qsizetype place : letters_of(text)) {
    const QChar letter = text[place].toUpper();
    if (letter.unicode() > 0x7F || taken.contains(letter)) continue;
    taken.insert(letter);
    button.setProperty(kLetter, letter);
    set_caption(&button, text);
    return;
  }
}

/// "S" and "Set" repeat; the return key presses them.
bool wants_mnemonic(const QAbstractButton& button) {
  return button.text().size() > 1 && !button.text().contains(u'&') &&
         !button.property(kSetsTheEditsBeside).toBool();
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
  QSet<QChar> taken(reserved.begin(), reserved.end());
  const QList<QAbstractButton*> all = page.findChildren<QAbstractButton*>();
  const auto give_to = [&](auto is_kind) {
    for (QAbstractButton* button : all)
      if (is_kind(button) && wants_mnemonic(*button)) give_mnemonic(*button, taken);
  };
  // Where letters are short, buttons go before check boxes, which the tab key reaches as well.
  give_to([](QAbstractButton* button) { return qobject_cast<QPushButton*>(button) != nullptr; });
  give_to([](QAbstractButton* button) { return qobject_cast<QCheckBox*>(button) != nullptr; });
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
