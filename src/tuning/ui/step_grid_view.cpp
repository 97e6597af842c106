#include "tuning/ui/step_grid_view.h"

#include <QLabel>

namespace qv5123 {
StepGridView::StepGridView(const DynamicDesk& desk, FieldEdits& edits, std::function<void(std::size_t)> set)
    : desk_(desk), edits_(edits), set_(std::move(set)) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setVerticalSpacing(3);
  for (std::size_t step = 0; step < kStepColumns; ++step) {
    auto* head = new QLabel(kStepColumnLabels[step]);
    head->setAlignment(Qt::AlignCenter);
    grid->addWidget(head, 0, static_cast<int>(step) + 1);
    grid->setColumnStretch(static_cast<int>(step) + 1, 1);
  }
  for (std::size_t row = 0; row < kStepRows; ++row) add_row(grid, row);
}

QString StepGridView::row_tooltip(std::size_t row) const {
  QStringList registers;
  for (std::size_t bank = 0; bank < kStepBanks; ++bank) {
    const FieldInfo& info = desk_.info(desk_.values().banks[bank][row].back());
    registers << QString(kStepBankPlaces[bank].caption) + " " + register_text(info.address);
  }
  return "Sends the row: " + registers.join(", ");
}

void StepGridView::add_row(QGridLayout* grid, std::size_t row) {
  const int line = static_cast<int>(row) + 1;
  grid->addWidget(new QLabel(kStepRules[row].label), line, 0);
  for (std::size_t step = 0; step < kStepColumns; ++step)
    grid->addWidget(make_cell(row, step), line, static_cast<int>(step) + 1);
  auto* set = make_set_button("Set", kStepRules[row].caption, row_tooltip(row), [this, row] { set_(row); });
  grid->addWidget(set, line, static_cast<int>(kStepColumns) + 1);
}

QSpinBox* StepGridView::make_cell(std::size_t row, std::size_t step) {
  QSpinBox* cell = nullptr;
  if (row == kRowIso && step == 0) {
    cell = make_number(1, 1, "ISO Offset", "1 in every bank");
    cell->setEnabled(false);
  } else {
    cell = edits_.number([this, row, step] { return desk_.cell(row, step); });
  }
  cell->setButtonSymbols(QAbstractSpinBox::NoButtons);
  cell->setAlignment(Qt::AlignRight);
  return cell;
}

}  // namespace qv5123
