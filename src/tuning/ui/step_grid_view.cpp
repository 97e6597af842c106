#include "tuning/ui/step_grid_view.h"

#include <QLabel>

#include "tuning/ui/page_parts.h"

namespace qv5123 {
namespace {

/// What can be typed; "Set" limits it to the row's range.
constexpr int kLowestTyped = -999;
constexpr int kHighestTyped = 999;

/// The row's label without the range that some of them carry.
QString name_of(std::size_t row) {
  return QString(kStepRowLabels[row]).section('(', 0, 0).trimmed();
}

QString row_tooltip(std::size_t row) {
  QStringList registers;
  const auto add = [&registers, row](const char* bank, BankId id) {
    registers << QString(bank) + " 0x" + QString::number(step_register(id, row), 16).toUpper();
  };
  add("TVI", BankId::Tvi);
  add("AHD", BankId::Ahd);
  add("CVI", BankId::Cvi);
  add("CVBS", BankId::Cvbs);
  add("IR-LED", BankId::IrLed);
  const StepRange range = step_range(row);
  return QString("%1..%2, registers: ").arg(range.lowest).arg(range.highest) + registers.join(", ");
}

}  // namespace

StepGridView::StepGridView(std::function<void(std::size_t)> set) : set_(std::move(set)) {
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

void StepGridView::add_row(QGridLayout* grid, std::size_t row) {
  const int line = static_cast<int>(row) + 1;
  grid->addWidget(new QLabel(kStepRowLabels[row]), line, 0);
  for (std::size_t step = 0; step < kStepColumns; ++step) {
    cells_[row][step] = make_cell(row, step);
    grid->addWidget(cells_[row][step], line, static_cast<int>(step) + 1);
  }
  auto* set = make_set_button("Set", name_of(row), row_tooltip(row), [this, row] { set_(row); });
  grid->addWidget(set, line, static_cast<int>(kStepColumns) + 1);
}

QSpinBox* StepGridView::make_cell(std::size_t row, std::size_t step) {
  QSpinBox* cell = make_number(kLowestTyped, kHighestTyped, name_of(row) + " " + kStepColumnLabels[step],
                               row_tooltip(row));
  cell->setButtonSymbols(QAbstractSpinBox::NoButtons);
  cell->setAlignment(Qt::AlignRight);
  // The offset of ISO is 1 in every bank.
  if (row == kRowIso && step == 0) cell->setEnabled(false);
  return cell;
}

void StepGridView::show_bank(const StepBank& bank) {
  for (std::size_t row = 0; row < kStepRows; ++row) show_row(row, bank[row]);
}

void StepGridView::show_row(std::size_t row, const StepBytes& bytes) {
  const StepCells numbers = decode_step_row(row, bytes);
  for (std::size_t step = 0; step < kStepColumns; ++step) show_value(cells_[row][step], numbers[step]);
}

StepCells StepGridView::cells(std::size_t row) const {
  for (QSpinBox* cell : cells_[row]) cell->interpretText();
  return shown_cells(row);
}

StepCells StepGridView::shown_cells(std::size_t row) const {
  StepCells numbers{};
  for (std::size_t step = 0; step < kStepColumns; ++step) numbers[step] = cells_[row][step]->value();
  return numbers;
}

StepGrid StepGridView::grid() const {
  StepGrid grid{};
  for (std::size_t row = 0; row < kStepRows; ++row) grid[row] = cells(row);
  return grid;
}

StepGrid StepGridView::shown_grid() const {
  StepGrid grid{};
  for (std::size_t row = 0; row < kStepRows; ++row) grid[row] = shown_cells(row);
  return grid;
}

}  // namespace qv5123
