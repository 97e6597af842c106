#include "link/ui/link_health_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <chrono>

#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

constexpr std::chrono::seconds kEvery{1};
constexpr int kWidth = 460;

QLabel* text_label(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return label;
}

}  // namespace

LinkHealthDialog::LinkHealthDialog(std::function<LinkReport()> report, QWidget* parent)
    : QDialog(parent), report_(std::move(report)) {
  setWindowTitle("Link health");
  auto* rows = new QVBoxLayout(this);
  form_ = new QFormLayout;
  rows->addLayout(form_);
  hint_ = text_label(this);
  hint_->setObjectName("latency-hint");
  hint_->setWordWrap(true);
  rows->addWidget(hint_);
  rows->addStretch(1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  auto* copy = buttons->addButton("Copy", QDialogButtonBox::ActionRole);
  copy->setToolTip("Copies the figures as text");
  connect(copy, &QPushButton::clicked, this, &LinkHealthDialog::copy_report);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  rows->addWidget(buttons);
  connect(&timer_, &QTimer::timeout, this, &LinkHealthDialog::show_report);
  setMinimumWidth(kWidth);
  show_report();
}

void LinkHealthDialog::show_report() {
  const LinkReport report = report_();
  const std::vector<LinkReportRow> rows = report_rows(report);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (i == figures_.size()) {
      figures_.push_back(text_label(this));
      figures_[i]->setAccessibleDescription(to_qt(rows[i].caption));
      form_->addRow(to_qt(rows[i].caption + ":"), figures_[i]);
    }
    figures_[i]->setText(to_qt(rows[i].text));
  }
  const QString hint = to_qt(latency_hint(report));
  hint_->setVisible(!hint.isEmpty());
  hint_->setText(hint);
}

void LinkHealthDialog::copy_report() const {
  QApplication::clipboard()->setText(to_qt(report_text(report_())));
}

void LinkHealthDialog::showEvent(QShowEvent* event) {
  show_report();
  timer_.start(kEvery);
  QDialog::showEvent(event);
}

void LinkHealthDialog::hideEvent(QHideEvent* event) {
  timer_.stop();
  QDialog::hideEvent(event);
}

}  // namespace qv5123
