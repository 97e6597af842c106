#pragma once

#include <string>
#include <vector>

#include "state/sign_off.h"
#include "state/value_states.h"
#include "tuning/matrix.h"

namespace qv5123 {

/// Every value of every page with what the chip and the file have of it.
std::vector<SignOffPage> sign_off_pages(const ValueStates& values);

/// What a page's desk has measured and computed. `values` tell what of it the chip holds.
void take_desk(SignOff& report, const TuningDesk& desk, const ValueStates& values);

/// "TVI, Outdoor": whose matrix the page shows.
std::string matrix_place_text(const MatrixValues& values);

}  // namespace qv5123
