#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "base/task.h"
#include "console/page_host.h"
#include "state/value_states.h"

namespace qv5123 {

/// Asks the chip for each tuning page in turn, open or not, so that the states know what it holds. What the
/// pages hold stays as it is. `begins` is called with each page's place in kTuningPages. Resumes with the
/// names of those that did not answer as they should; dropping the task ends the reading. Host and states
/// must outlive it.
Task<std::vector<std::string>> read_all_pages(DeskHost& host, ValueStates& states,
                                              std::function<void(std::size_t page)> begins);

/// "6 pages read from the chip", "Not read from the chip: awb, gamma".
std::string pages_read_text(std::size_t pages, const std::vector<std::string>& failed);

}  // namespace qv5123
