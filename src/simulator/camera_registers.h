#pragma once

#include <cstdint>

#include "link/register_write.h"
#include "simulator/camera.h"
#include "simulator/chip_state.h"

namespace qv5123 {

/// True when a register between `first` and `last` (12 bits each) says what the chip measures.
bool measured_between(std::uint16_t first, std::uint16_t last);

/// Brings all such registers up to date: gains, picker, white balance picker. The colour picker's stay while
/// it is off.
void measure(const Camera& camera, ChipState& chip);

/// Gives the registers that belong to the camera module their values: the centre of the lens.
void fit_module(const Camera& camera, ChipState& chip);

/// Direct registers that show the white balance page's mark ("None", "Set", "Check"), and the keys that move
/// it while it is being set.
void steer_mark(ChipState& chip, RegisterWrite write);

}  // namespace qv5123
