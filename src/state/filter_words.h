#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

/// What stands between the blanks of a filter, in small letters.
std::vector<std::string> filter_words(std::string_view text);

}  // namespace qv5123
