#include "state/ui/report_dialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace qv5123 {

ReportDialog::ReportDialog(const ReportAnswers& before, QWidget* parent) : QDialog(parent) {
  setWindowTitle("Sign-off report");
  auto* form = new QFormLayout;
  serial_number_ = new QLineEdit(before.serial_number);
  serial_number_->setAccessibleName("Serial number");
  serial_number_->setToolTip("As the board's label has it: it stands beside the one that the chip tells");
  form->addRow("Serial &number:", serial_number_);
  limits_ = add_file(form, "Limits file",
                     "Lines such as \"mean color difference <= 2\" or \"lsc.parameter1.r, 0, 2000\"",
                     before.limits);
  firmware_ = add_file(form, "Firmware file", "Its SHA-256 stands in the report", before.firmware);
  font_ = add_file(form, "Font file", "Its SHA-256 stands in the report", before.font);
  notes_ = new QPlainTextEdit(before.notes);
  notes_->setAccessibleName("Notes");
  notes_->setTabChangesFocus(true);
  notes_->setMaximumHeight(5 * notes_->fontMetrics().lineSpacing());
  form->addRow("N&otes:", notes_);
  auto* hint = new QLabel(
      "All that the pages hold is taken as it is now, measured on the pages and read from the chip.\n"
      "A file name that ends in .pdf or .json gives one of those, any other HTML.");
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  auto* save = buttons->addButton("&Save report...", QDialogButtonBox::AcceptRole);
  save->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(hint);
  column->addWidget(buttons);
  resize(560, sizeHint().height());
}

QLineEdit* ReportDialog::add_file(QFormLayout* form, const QString& caption, const QString& tooltip,
                                  const QString& file) {
  auto* edit = new QLineEdit(file);
  edit->setAccessibleName(caption);
  edit->setToolTip(tooltip);
  auto* choose = new QPushButton("Choose...");
  choose->setAccessibleName("Choose " + caption);
  choose->setAutoDefault(false);
  connect(choose, &QPushButton::clicked, this, [this, edit] { emit file_wanted(edit); });
  auto* row = new QHBoxLayout;
  row->addWidget(edit, 1);
  row->addWidget(choose);
  form->addRow(caption + ":", row);
  return edit;
}

ReportAnswers ReportDialog::answers() const {
  return {serial_number_->text().trimmed(), notes_->toPlainText().trimmed(), limits_->text().trimmed(),
          firmware_->text().trimmed(), font_->text().trimmed()};
}

}  // namespace qv5123
