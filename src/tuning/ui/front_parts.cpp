#include "tuning/ui/front_parts.h"

#include "tuning/ui/page_parts.h"

namespace qv5123 {

QGridLayout* tight_grid(QWidget* parent) {
  auto* grid = new QGridLayout(parent);
  grid->setVerticalSpacing(3);
  grid->setHorizontalSpacing(5);
  grid->setContentsMargins(5, 5, 5, 6);
  return grid;
}

QLabel* label_for(QWidget* buddy, const QString& text) {
  auto* label = new QLabel(text);
  label->setBuddy(buddy);
  return label;
}

void add_field(QGridLayout* grid, int row, const QString& caption, QWidget* field) {
  grid->addWidget(label_for(field, caption), row, 0);
  grid->addWidget(field, row, 1);
}

QLineEdit* make_hex_edit(HexForm form, const QString& name, const QString& text, const QString& tooltip) {
  auto* edit = named(new QLineEdit(text), name, tooltip);
  edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance("0000") + 16);
  QObject::connect(edit, &QLineEdit::textChanged, edit, [edit, form](const QString& typed) {
    mark_refused(edit, !reads_as_typed(form, typed.toStdString()));
  });
  return edit;
}

}  // namespace qv5123
