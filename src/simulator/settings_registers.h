#pragma once

#include "simulator/chip_state.h"
#include "simulator/write_run.h"

namespace qv5123 {

/// Stores the latest write of `run` in the user data entry that its register stands for, once the group of
/// bytes it belongs to is complete. While the chip keeps what it is told, the entry of the kept data follows.
/// Registers that stand for no entry change nothing.
void apply_setting(ChipState& state, const WriteRun& run);

/// Gives every settings register the first byte of its user data entries, as after a start.
void load_setting_registers(ChipState& state);

}  // namespace qv5123
