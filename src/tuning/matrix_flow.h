#pragma once

#include "base/task.h"
#include "link/command_link.h"
#include "tuning/matrix.h"

namespace qv5123 {

/// Sets `values.picker_on` and brings the chip to it; switching on ends manual input. The values are the
/// page's own and must outlive the flow. What went wrong, in words; empty when the chip followed. Nothing is
/// written where the chip does not tell the bits to keep.
Task<std::string> switch_matrix_picker(CommandLink& link, MatrixValues& values, bool on);

/// "GET COLOR": what the picker reads becomes `patch`, 0..23, which was selected as the button was pressed;
/// then the picker goes on by the patch step. False when the chip did not answer; the patch then keeps its
/// values and the picker its place.
Task<bool> get_patch_color(CommandLink& link, MatrixValues& values, std::size_t patch);

}  // namespace qv5123
