#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/settings_table.h"

namespace qv5123 {

/// What is odd about a setting file's text: anything that is no decimal number 0..255, and a count of
/// numbers other than 1024. A line each.
std::vector<std::string> format_problems(std::string_view text);

/// Where the pages would not show what the image holds, because it lies beyond what they take.
std::vector<std::string> value_problems(const SettingsTable& table, const UserDataImage& image);

}  // namespace qv5123
