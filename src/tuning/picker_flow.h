#pragma once

#include "link/command_link.h"
#include "link/task.h"
#include "tuning/picker.h"

namespace qv5123 {

/// Writes the bytes one after the other, waiting after each.
Task<> write_isp_bytes(CommandLink& link, IspBytes bytes);

/// What the chip measures around the cursor, 0..255 each; -1 where it did not answer.
Task<PerColour> read_picker(CommandLink& link);

/// The end of switching the picker on or off: `bytes`, then the AE and AWB tasks, then, when on, the
/// position. Without an answer to the read before, `bytes` were made from -1, that is from all bits set.
Task<> switch_picker(CommandLink& link, bool on, IspBytes bytes, PickerPosition position);

}  // namespace qv5123
