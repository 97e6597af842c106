#include "app/ui/verify_pane.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

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
  connect(repair_, &QPushButton::clicked, this, &VerifyPane::repair_wanted);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(label_);
  row->addWidget(repair_);
  repair_->hide();
  hide();
}

void VerifyPane::show_text(const QString& text, const QStringList& details) {
  label_->setText(label_->fontMetrics().elidedText(text, Qt::ElideRight, kWidest));
  // What is cut is read out all the same.
  label_->setAccessibleName(text);
  label_->setToolTip(plain_tool_tip((QStringList(text) + details).join(u'\n')));
  setVisible(!text.isEmpty());
}

void VerifyPane::offer_repair(bool offered) {
  repair_->setVisible(offered);
}

}  // namespace qv5123
