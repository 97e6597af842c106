#include "app/ui/typed_text.h"

#include <QApplication>
#include <QLineEdit>

#include "base/ui/qt_text.h"

namespace qv5123 {

TypedText::TypedText(QObject* parent) : QObject(parent) {
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

void TypedText::follow(QWidget* focused) {
  if (edit_) edit_->disconnect(this);
  edit_ = qobject_cast<QLineEdit*>(focused);
  // Spin boxes and lists have the focus for the edits in them.
  if (!edit_ && focused) edit_ = focused->findChild<QLineEdit*>();
  if (!edit_ || edit_->isReadOnly()) return edit_.clear();
  name_ = focused->accessibleName();
  mark_taken();
  connect(edit_, &QLineEdit::editingFinished, this, &TypedText::mark_taken);
}

void TypedText::mark_taken() {
  if (edit_) taken_ = edit_->text();
}

std::string TypedText::text() const {
  if (!edit_ || edit_->text() == taken_) return {};
  return from_qt(name_ + ": " + edit_->text());
}

}  // namespace qv5123
