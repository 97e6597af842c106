#include "tuning/ui/field_edits.h"

namespace qv5123 {

QString field_tooltip(const FieldInfo& field) {
  return QString::fromStdString(field.range_text());
}

QString registers_text(const std::vector<int>& addresses) {
  QStringList texts;
  for (const int address : addresses) texts << register_text(address).section(' ', 1);
  return "registers " + texts.join(", ");
}

QSpinBox* FieldEdits::number(std::size_t field, const QString& name) {
  const FieldInfo& info = desk_.model().fields()[field];
  const QString caption = QString::fromStdString(info.caption.caption());
  QSpinBox* box = make_number(info.range.lowest, info.range.highest, name.isEmpty() ? caption : name,
                              field_tooltip(info));
  QObject::connect(box, &QSpinBox::valueChanged, box, [this, field](int number) {
    desk_.model().set_number(field, number);
    if (changed_) changed_();
  });
  edits_.push_back({field, box});
  return box;
}

void FieldEdits::show(std::size_t field) {
  const int number = desk_.model().numbers()[field];
  for (const Edit& edit : edits_)
    if (edit.field == field) show_value(edit.box, number);
}

void FieldEdits::show() {
  const std::vector<int> numbers = desk_.model().numbers();
  for (const Edit& edit : edits_) show_value(edit.box, numbers[edit.field]);
}

}  // namespace qv5123
