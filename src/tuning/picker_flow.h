#pragma once

#include <string>

#include "base/task.h"
#include "link/command_link.h"
#include "tuning/picker.h"

namespace qv5123 {

/// Writes the bytes one after the other, waiting after each. False when not all of them left.
Task<bool> write_isp_bytes(CommandLink& link, IspBytes bytes);

/// The same for bytes that bring the cursor somewhere: not while somebody else measures where it is.
Task<bool> move_picker(CommandLink& link, IspBytes position);

/// What the chip measures around the cursor, 0..255 each; -1 where it did not answer. Nobody moves the cursor
/// meanwhile.
Task<PerColour> read_picker(CommandLink& link);
/// The same once the cursor was brought to `position`. `registers` are those of red, green and blue.
Task<PerColour> read_picker_at(CommandLink& link, IspBytes position,
                               std::array<int, 3> registers = kPickerColourRegisters);

/// What a register holds of which only some bits are to change, asked for twice if need be; -1 without any
/// answer.
Task<int> read_picker_register(CommandLink& link, int address);
/// What is said where that was in vain.
std::string no_answer_text(int address);

/// The end of switching the picker on or off: `bytes`, then the AE and AWB tasks, then, when on, the
/// position. What went wrong, in words; empty when all of it left.
Task<std::string> switch_picker(CommandLink& link, bool on, IspBytes bytes, PickerPosition position);

/// A page's picker as its own values have it, which must outlive the switching.
struct PickerSwitch {
  IspBytes& off;  ///< what switches the chip's picker off again
  PickerPosition& position;
};
/// Switches the picker and nothing else, as the linear matrix page does. What went wrong, in words; empty
/// when the chip followed. Nothing is written where the chip does not tell the bits to keep.
Task<std::string> switch_plain_picker(CommandLink& link, bool on, PickerSwitch picker);

/// What `off` restores beside the picker itself, such as the correction that a lens calibration measures in
/// front of.
IspBytes restored_beside_picker(const IspBytes& off);

/// What switches the picker off where nobody can wait for it: each access is followed by a flush of nothing,
/// whose pacing is its wait. `off` may be empty.
Traffic picker_off_traffic(const IspBytes& off);

}  // namespace qv5123
