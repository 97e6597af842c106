#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "link/register_write.h"

/// "Image Tune by ISO_step": six image parameters over an offset column and six ISO steps, once per bank.
namespace qv5123 {

inline constexpr std::size_t kStepRows = 6;
inline constexpr std::size_t kStepColumns = 7;
inline constexpr std::size_t kStepBanks = 5;

/// Bytes as the chip and the image hold them.
using StepBytes = std::array<std::uint8_t, kStepColumns>;
using StepBank = std::array<StepBytes, kStepRows>;
/// Numbers as the page shows them.
using StepCells = std::array<int, kStepColumns>;
using StepGrid = std::array<StepCells, kStepRows>;

/// A bank, by its place in kStepBankPlaces; the order is that of the chip's reply and of the full save.
enum class BankId : std::size_t { Tvi, IrLed, Cvbs, Ahd, Cvi };
struct BankPlace {
  /// Register of the ISO row; the other rows use the next five.
  std::uint8_t first_register;
  /// First of 42 entries of the user data image, row by row.
  std::size_t first_entry;
};
inline constexpr std::array<BankPlace, kStepBanks> kStepBankPlaces{
    {{0x42, 292}, {0x48, 334}, {0xC3, 592}, {0xCE, 707}, {0xD4, 803}}};

enum StepRow : std::size_t { kRowIso, kRowBright, kRowSharpness, kRowNr, kRowFlatNr, kRowContrast };
/// The labels' ranges are not those that are applied.
inline constexpr std::array<const char*, kStepRows> kStepRowLabels{
    "ISO(1~250)", "Bright", "Sharpness", "NR (1~255)", "Flat-NR (0~32)", "Contrast"};
inline constexpr std::array<const char*, kStepColumns> kStepColumnLabels{
    "Offset", "Step 0", "Step 1", "Step 2", "Step 3", "Step 4", "Step 5"};

/// Receives the column of the value that is written next.
inline constexpr std::uint8_t kStepSelectRegister = 0x41;
inline constexpr std::uint8_t step_register(BankId bank, std::size_t row) {
  return static_cast<std::uint8_t>(kStepBankPlaces[static_cast<std::size_t>(bank)].first_register + row);
}

/// The numbers that a row takes; others are limited to them.
struct StepRange {
  int lowest;
  int highest;
};
StepRange step_range(std::size_t row);

/// Bytes of a row of numbers, after limiting them: ISO 0..250 with an offset of 1, Bright -64..191,
/// Contrast -16..32, the others 0..255. Bright is kept as value + 64, Contrast as 64 - value.
StepBytes encode_step_row(std::size_t row, const StepCells& cells);
/// Numbers that the page shows for a row; the ISO offset always shows 1.
StepCells decode_step_row(std::size_t row, const StepBytes& bytes);
StepGrid decode_step_bank(const StepBank& bank);

/// A bank whose every cell shows 0, but the ISO row 1, its lowest as the label says.
StepBank neutral_step_bank();

/// An error box: what was corrected, under the title of the row.
struct StepMessage {
  std::string title;
  std::string text;
  friend bool operator==(const StepMessage&, const StepMessage&) = default;
};

struct StepRowWrite {
  /// The row after correction, as it went out.
  StepBytes bytes;
  Traffic traffic;
  std::vector<StepMessage> messages;
};
/// The step-table write of one row. ISO, NR and Flat-NR must not fall from step to step; each column is
/// corrected in one pass forward, against the next column as it was typed.
StepRowWrite write_step_row(BankId bank, std::size_t row, const StepCells& cells);

}  // namespace qv5123
