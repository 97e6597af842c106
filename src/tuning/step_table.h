#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "link/register_write.h"
#include "tuning/field.h"
#include "tuning/video_mode.h"

/// "Image Tune by ISO_step": six image parameters over an offset column and six ISO steps, once per bank.
namespace qv5123 {

inline constexpr std::size_t kStepRows = 6;
inline constexpr std::size_t kStepColumns = 7;
inline constexpr std::size_t kStepBanks = 5;

/// Numbers as the page shows them. Only the offset of ISO, which it always shows as 1, is the byte that chip
/// or file had.
using StepCells = std::array<int, kStepColumns>;
using StepGrid = std::array<StepCells, kStepRows>;

/// A bank, by its place in kStepBankPlaces; the order is that of the chip's reply and of the full save.
enum class BankId : std::size_t { tvi, ir_led, cvbs, ahd, cvi };
struct BankPlace {
  const char* name;
  const char* caption;
  /// Register of the ISO row; the other rows use the next five.
  int first_register;
  /// First of 42 entries of the user data image, row by row.
  int first_entry;
};
inline constexpr std::array<BankPlace, kStepBanks> kStepBankPlaces{
    {{kVideoModeKeys[kTvi], kVideoModeNames[kTvi], 0x42, 292},
     {"ir_led", "IR-LED", 0x48, 334},
     {kVideoModeKeys[kCvbs], kVideoModeNames[kCvbs], 0xC3, 592},
     {kVideoModeKeys[kAhd], kVideoModeNames[kAhd], 0xCE, 707},
     {kVideoModeKeys[kCvi], kVideoModeNames[kCvi], 0xD4, 803}}};

/// The row that stands first.
inline constexpr std::size_t kRowIso = 0;
struct StepRowRule {
  const char* name;
  const char* caption;
  /// With a range that is not the one that is applied.
  const char* label;
  /// What the numbers are limited to when they are typed or set.
  Range range;
  /// How they become bytes; those of a file or chip may lie outside the range.
  Encoding as;
  /// Title of the row's messages; a row without one may fall from step to step.
  const char* title;
};
inline constexpr Encoding kBrightByte{[](int value) { return value + 64; },
                                      [](int stored) { return stored - 64; }};
inline constexpr Encoding kContrastByte{[](int value) { return (64 - value) & 0xFF; },
                                        [](int stored) { return 64 - stored; }};
inline constexpr std::array<StepRowRule, kStepRows> kStepRules{
    {{"iso", "ISO", "ISO(1~250)", {0, 250}, kPlain, "ISO Control"},
     {"bright", "Bright", "Bright", {-64, 191}, kBrightByte, nullptr},
     {"sharpness", "Sharpness", "Sharpness", {0, 255}, kPlain, nullptr},
     {"nr", "NR", "NR (1~255)", {0, 255}, kPlain, "NR Control"},
     {"flat_nr", "Flat-NR", "Flat-NR (0~32)", {0, 255}, kPlain, "Flat NR Control"},
     {"contrast", "Contrast", "Contrast", {-16, 32}, kContrastByte, nullptr}}};
inline constexpr std::array<const char*, kStepColumns> kStepColumnNames{"offset", "step0", "step1", "step2",
                                                                        "step3",  "step4", "step5"};
inline constexpr std::array<const char*, kStepColumns> kStepColumnLabels{
    "Offset", "Step 0", "Step 1", "Step 2", "Step 3", "Step 4", "Step 5"};

/// Receives the column of the value that is written next.
inline constexpr std::uint8_t kStepSelectRegister = 0x41;
constexpr int step_register(BankId bank, std::size_t row) {
  return kStepBankPlaces[static_cast<std::size_t>(bank)].first_register + static_cast<int>(row);
}
/// One number as the chip holds it.
inline RegisterWrite step_write(BankId bank, std::size_t row, int number) {
  return {low_byte(step_register(bank, row)), low_byte(kStepRules[row].as.encode(number))};
}

/// A bank whose every cell shows 0, but the ISO row 1, its lowest as the label says.
constexpr StepGrid neutral_step_bank() {
  StepGrid bank{};
  bank[kRowIso].fill(1);
  return bank;
}

/// An error box: what was corrected, under the title of the row.
struct StepMessage {
  std::string title;
  std::string text;
  friend bool operator==(const StepMessage&, const StepMessage&) = default;
};

struct StepRowWrite {
  /// The row as it went out: limited, with an ISO offset of 1, and corrected.
  StepCells cells;
  Traffic traffic;
  std::vector<StepMessage> messages;
};
/// The step-table write of one row. ISO, NR and Flat-NR must not fall from step to step; each column is
/// corrected in one pass forward, against the next column as it was typed.
StepRowWrite write_step_row(BankId bank, std::size_t row, const StepCells& cells);

}  // namespace qv5123
