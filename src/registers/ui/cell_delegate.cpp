#include "registers/ui/cell_delegate.h"

#include <QComboBox>
#include <QIntValidator>
#include <QLineEdit>
#include <QPainter>

namespace qv5123 {
namespace {

constexpr int kLargest = 255;

QString name_of(const QModelIndex& index) {
  const QString heading = index.model()->headerData(index.column(), Qt::Horizontal).toString();
  return QString("%1 of row %2").arg(heading).arg(index.row() + 1);
}

QLineEdit* edit_in(QWidget* editor) {
  auto* list = qobject_cast<QComboBox*>(editor);
  return list ? list->lineEdit() : qobject_cast<QLineEdit*>(editor);
}

/// "1: on" stands for 1.
QString number_part(const QString& text) {
  return text.section(u':', 0, 0).trimmed();
}

}  // namespace

QString CellDelegate::lines_of(QString text) {
  return text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  const bool selected = option.state.testFlag(QStyle::State_Selected);
  const QPalette& palette = option.palette;
  painter->save();
  painter->setClipRect(option.rect);
  if (selected) painter->fillRect(option.rect, palette.color(QPalette::Highlight));
  painter->setPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
  const QRect inside = option.rect.adjusted(kTextMargin, kTextMargin, -kTextMargin, -kTextMargin);
  painter->drawText(inside, kTextFlags, lines_of(index.data().toString()));
  if (option.state.testFlag(QStyle::State_HasFocus)) {
    painter->setPen(QPen(painter->pen().color(), 1, Qt::DotLine));
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
  }
  painter->restore();
}

QWidget* CellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                    const QModelIndex& index) const {
  const QStringList choices = index.data(kChoicesRole).toStringList();
  QWidget* editor = nullptr;
  if (choices.isEmpty()) {
    auto* edit = new QLineEdit(parent);
    edit->setValidator(new QIntValidator(0, kLargest, edit));
    editor = edit;
  } else {
    auto* list = new QComboBox(parent);
    list->setEditable(true);
    list->setInsertPolicy(QComboBox::NoInsert);
    list->addItems(choices);
    connect(list, &QComboBox::activated, this, [this, list] {
      auto* self = const_cast<CellDelegate*>(this);
      emit self->commitData(list);
      emit self->closeEditor(list);
    });
    editor = list;
  }
  editor->setAccessibleName(name_of(index));
  editor->setToolTip("A decimal number. Return takes it, Escape leaves it as it was.");
  return editor;
}

void CellDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  const QString now = index.data().toString().trimmed();
  if (auto* list = qobject_cast<QComboBox*>(editor)) {
    for (int i = 0; i < list->count(); ++i)
      if (number_part(list->itemText(i)) == now) list->setCurrentIndex(i);
  } else {
    edit_in(editor)->setText(now);
  }
  edit_in(editor)->selectAll();
}

void CellDelegate::setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const {
  bool is_number = false;
  const QString text = number_part(edit_in(editor)->text());
  const int number = text.toInt(&is_number);
  if (is_number && text != index.data().toString().trimmed())
    emit edited(index.column(), index.row(), number);
}

}  // namespace qv5123
