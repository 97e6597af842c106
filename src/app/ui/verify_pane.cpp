#include "app/ui/verify_pane.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <utility>

#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

/// A longer text is cut: the messages beside it need the room.
constexpr int kWidest = 360;

}  // namespace

VerifyPane::VerifyPane(QWidget* parent)
    : QWidget(parent), label_(new QLabel(this)), repair_(new QPushButton("Send these again", this)) {
  label_->setObjectName("verification");
  label_->setTextFormat(Qt::PlainText);
  label_->setAccessibleDescription("What came of reading the page back after its save");
  repair_->setAccessibleName("Send these again");
  repair_->setToolTip(
      "Sends the values that differ or were not proven again and reads the page back, at most three times");
  connect(repair_, &QPushButton::clicked, this, &VerifyPane::send_again);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(label_);
  row->addWidget(repair_);
  repair_->hide();
  hide();
}

void VerifyPane::show_under_way(ReadBackResult begun) {
  under_way_ = std::move(begun);
  show_current();
}

void VerifyPane::show_result(ReadBackResult found) {
  under_way_.reset();
  found_ = std::move(found);
  show_current();
}

void VerifyPane::forget(const QString& about) {
  if (under_way_ && under_way_->about == about) under_way_.reset();
  if (found_ && (found_->verified || found_->about == about)) found_.reset();
  show_current();
}

void VerifyPane::show_current() {
  const ReadBackResult shown = under_way_ ? *under_way_ : found_.value_or(ReadBackResult());
  label_->setText(label_->fontMetrics().elidedText(shown.text, Qt::ElideRight, kWidest));
  // What is cut is read out all the same.
  label_->setAccessibleName(shown.text);
  label_->setToolTip(plain_tool_tip((QStringList(shown.text) + shown.details).join(u'\n')));
  repair_->setVisible(shown.again != nullptr);
  setVisible(!shown.text.isEmpty());
}

void VerifyPane::send_again() {
  // What it begins may take the place of what was found.
  if (const auto again = found_.value_or(ReadBackResult()).again) again();
}

}  // namespace qv5123
