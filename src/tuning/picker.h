#pragma once

#include <array>
#include <vector>

#include "link/register_write.h"

/// The chip's colour picker: a cursor in the picture whose surroundings the chip measures.
namespace qv5123 {

inline constexpr int kPickerMaximumX = 2303;
inline constexpr int kPickerMaximumY = 1535;

/// A number for red, green and blue.
using PerColour = std::array<int, 3>;
inline constexpr std::array<const char*, 3> kColourNames{"R", "G", "B"};
/// In the names of values.
inline constexpr std::array<const char*, 3> kColourKeys{"r", "g", "b"};

/// Counts from which on a reading of the picker is clipped.
inline constexpr int kClippedCounts = 251;
/// Below it a reading says nothing.
inline constexpr int kDarkCounts = 4;

/// Addresses in the ISP space.
namespace picker_register {
inline constexpr int kCorrection = 0xA10;  ///< bit 4 clear while lens shading is being measured
inline constexpr int kDisplay = 0xA20;     ///< 0x80 with the cursor shown, 0x90 without
inline constexpr int kEnable = 0xA29;      ///< bit 7
inline constexpr int kX = 0xC38;           ///< high byte, the low byte one further
inline constexpr int kY = 0xC3A;           ///< high byte, the low byte one further
inline constexpr int kRed = 0xC3D;         ///< mean around the cursor, 8 bits
inline constexpr int kGreen = 0xC3E;
inline constexpr int kBlue = 0xC3F;
}  // namespace picker_register

inline constexpr std::array<int, 3> kPickerColourRegisters{picker_register::kRed, picker_register::kGreen,
                                                           picker_register::kBlue};

/// Where the cursor is: x 0..2303, y 0..1535.
struct PickerPosition {
  int x = 960;
  int y = 540;
  friend bool operator==(const PickerPosition&, const PickerPosition&) = default;
};

/// The nearest position that the chip takes.
PickerPosition clamped(PickerPosition position);

enum class PickerMove { left, up, right, down };
constexpr bool moves_across(PickerMove move) {
  return move == PickerMove::left || move == PickerMove::right;
}

inline constexpr int kMoveSteps = 8;
/// Position units per key press of entry `index` of "Move Step:": 1, 2, 4 .. 128. Clamps the index to 0..7.
constexpr int move_step(int index) {
  return 1 << (index < 0 ? 0 : index >= kMoveSteps ? kMoveSteps - 1 : index);
}

/// Where a press of an arrow key takes the cursor.
PickerPosition moved(PickerPosition position, PickerMove move, int step_index);

/// One byte for the ISP space. Each is a flush of its own, and a wait after it.
struct IspByte {
  int address = 0;
  int value = 0;
  friend bool operator==(const IspByte&, const IspByte&) = default;
};
using IspBytes = std::vector<IspByte>;

IspBytes picker_x_bytes(int x);
IspBytes picker_y_bytes(int y);
/// The whole position: y first, then x.
IspBytes picker_position_bytes(PickerPosition position);

/// Shows or hides the cursor. `enable` is what kEnable held, of which the other bits are kept.
IspBytes picker_switch_bytes(bool on, int enable);

/// What messages of the picker are about, whichever page it was switched by: a page's own failure stands
/// beside them.
inline constexpr char kAboutPicker[] = "color picker";
/// What the status bar says of a switch.
inline constexpr char kPickerOnStatus[] =
    "Start color capture. Please click direction button to move cursor on screen.";
inline constexpr char kPickerOffStatus[] = "End color capture.";
/// Why nothing is measured.
inline constexpr char kPickerChipWasAway[] =
    "the chip was away since the picker was switched on. Switch it off and on again.";

inline constexpr char kPickerPortLost[] =
    "The port was lost with the color picker on, and the chip may still measure. Once the port is back the "
    "picker is switched off.";
inline constexpr char kPickerOffAfterLoss[] =
    "The port is back. The color picker was switched off: AE and AWB run again.";

/// Stops the AE and AWB tasks while the picker measures, and lets them run again.
Traffic picker_task_traffic(bool on);

}  // namespace qv5123
