#pragma once

#include "simulator/camera.h"
#include "simulator/chip_state.h"

namespace qv5123 {

/// Lets the AE task, where it runs, set the sensor's gain, and then the AWB task the white balance gains.
/// Both reach their aim at once; one that is stopped leaves everything as it is. AE brings the brightest spot
/// of the picture to 9 counts of luma per unit of its target; AWB makes what it takes for white neutral, and
/// changes nothing where the picture has no white.
void run_auto_tasks(const Camera& camera, ChipState& chip);

}  // namespace qv5123
