#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

/// UTF-16 as UTF-8; half a surrogate pair becomes U+FFFD.
std::string utf8(std::u16string_view text);

/// ASCII letters made small, for comparing without regard to case.
std::string lower_case(std::string text);

}  // namespace qv5123
