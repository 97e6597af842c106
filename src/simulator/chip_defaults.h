#pragma once

#include "simulator/chip_state.h"

namespace qv5123 {

/// The tuning that the simulated chip leaves the factory with: every page shows something sensible.
UserDataImage factory_user_data();

/// Gives the registers that have no user data entry, the ISP space and the sensor space their values at
/// power on.
void reset_registers(ChipState& chip);

}  // namespace qv5123
