#include "tuning/step_table.h"

#include <algorithm>

namespace qv5123 {
namespace {

struct RowRule {
  StepRange range;
  /// Title of the row's messages; a row without one is not checked for order.
  const char* title;
};
constexpr std::array<RowRule, kStepRows> kRules{{{{0, 250}, "ISO Control"},
                                                 {{-64, 191}, nullptr},
                                                 {{0, 255}, nullptr},
                                                 {{0, 255}, "NR Control"},
                                                 {{0, 255}, "Flat NR Control"},
                                                 {{-16, 32}, nullptr}}};
constexpr int kShift = 64;
constexpr int kIsoOffset = 1;
constexpr std::uint8_t kLowestIso = 1;

constexpr char kAboveNext[] = "At least must be equal or smaller than next step value.";
constexpr char kBelowPrevious[] = "At least must be equal or bigger than previous step value.";

int encode_cell(std::size_t row, int value) {
  if (row == kRowBright) return value + kShift;
  if (row == kRowContrast) return kShift - value;
  return value;
}

int decode_cell(std::size_t row, int stored) {
  if (row == kRowBright) return stored - kShift;
  if (row == kRowContrast) return kShift - stored;
  return stored;
}

/// Brings one column in order; returns what to tell the user, or null when there was nothing to do.
const char* correct(StepBytes& bytes, std::size_t step) {
  if (step + 1 < kStepColumns && bytes[step] > bytes[step + 1]) {
    bytes[step] = bytes[step + 1];
    return kAboveNext;
  }
  if (step != 0 && bytes[step] < bytes[step - 1]) {
    bytes[step] = bytes[step - 1];
    return kBelowPrevious;
  }
  return nullptr;
}

}  // namespace

StepRange step_range(std::size_t row) {
  return kRules[row].range;
}

StepBytes encode_step_row(std::size_t row, const StepCells& cells) {
  StepBytes bytes{};
  const StepRange range = step_range(row);
  for (std::size_t step = 0; step < kStepColumns; ++step)
    bytes[step] = low_byte(encode_cell(row, std::clamp(cells[step], range.lowest, range.highest)));
  if (row == kRowIso) bytes[0] = kIsoOffset;
  return bytes;
}

StepCells decode_step_row(std::size_t row, const StepBytes& bytes) {
  StepCells cells{};
  for (std::size_t step = 0; step < kStepColumns; ++step) cells[step] = decode_cell(row, bytes[step]);
  if (row == kRowIso) cells[0] = kIsoOffset;
  return cells;
}

StepGrid decode_step_bank(const StepBank& bank) {
  StepGrid grid{};
  for (std::size_t row = 0; row < kStepRows; ++row) grid[row] = decode_step_row(row, bank[row]);
  return grid;
}

StepBank neutral_step_bank() {
  StepBank bank{};
  for (std::size_t row = 0; row < kStepRows; ++row) bank[row] = encode_step_row(row, StepCells{});
  bank[kRowIso].fill(kLowestIso);
  return bank;
}

StepRowWrite write_step_row(BankId bank, std::size_t row, const StepCells& cells) {
  StepRowWrite result{encode_step_row(row, cells), {}, {}};
  const char* title = kRules[row].title;
  for (std::size_t step = 0; step < kStepColumns; ++step) {
    append(result.traffic, RegisterWrite{kStepSelectRegister, static_cast<std::uint8_t>(step)});
    const char* complaint = title ? correct(result.bytes, step) : nullptr;
    if (complaint) result.messages.push_back({title, complaint});
    append(result.traffic, RegisterWrite{step_register(bank, row), result.bytes[step]});
  }
  return result;
}

}  // namespace qv5123
