#pragma once

#include <string>
#include <vector>

#include "cli/settings_table.h"

namespace qv5123 {

/// Where the pages would not show what the image holds, because it lies beyond what they take.
std::vector<std::string> value_problems(const SettingsTable& table, const UserDataImage& image);

}  // namespace qv5123
