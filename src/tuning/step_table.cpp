#include "tuning/step_table.h"

#include <algorithm>

namespace qv5123 {
namespace {

constexpr int kIsoOffset = 1;

constexpr char kAboveNext[] = "At least must be equal or smaller than next step value.";
constexpr char kBelowPrevious[] = "At least must be equal or bigger than previous step value.";

StepCells limited(std::size_t row, StepCells cells) {
  const Range& range = kStepRules[row].range;
  for (int& cell : cells) cell = std::clamp(cell, range.lowest, range.highest);
  if (row == kRowIso) cells[0] = kIsoOffset;
  return cells;
}

/// Brings one column in order; returns what to tell the user, or null when there was nothing to do.
const char* correct(StepCells& cells, std::size_t step) {
  if (step + 1 < kStepColumns && cells[step] > cells[step + 1]) {
    cells[step] = cells[step + 1];
    return kAboveNext;
  }
  if (step != 0 && cells[step] < cells[step - 1]) {
    cells[step] = cells[step - 1];
    return kBelowPrevious;
  }
  return nullptr;
}

}  // namespace

StepRowWrite write_step_row(BankId bank, std::size_t row, const StepCells& cells) {
  StepRowWrite result{limited(row, cells), {}, {}};
  const char* title = kStepRules[row].title;
  for (std::size_t step = 0; step < kStepColumns; ++step) {
    append(result.traffic, RegisterWrite{kStepSelectRegister, static_cast<std::uint8_t>(step)});
    const char* complaint = title ? correct(result.cells, step) : nullptr;
    if (complaint) result.messages.push_back({title, complaint});
    append(result.traffic, step_write(bank, row, result.cells[step]));
  }
  return result;
}

}  // namespace qv5123
