#pragma once

#include <string>
#include <vector>

#include "cli/chip.h"
#include "tuning/page_model.h"

namespace qv5123 {

/// The pages that are meant; "all" is all of them, in their order. A name that is no page's is a Complaint.
std::vector<std::string> pages_named(const std::vector<std::string>& names);

/// "6 values read back agree", as a remark.
std::string read_back_text(std::size_t values);

/// Brings `page` to what the chip has of it, and returns the reply. What the chip does not report stays.
Task<std::string> read_page(Chip& chip, TuningModel& page);

}  // namespace qv5123
