#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

/// UTF-8 to UTF-16 and back; what is not valid becomes the replacement character.
std::wstring to_wide(std::string_view text);
std::string to_utf8(std::wstring_view text);

/// What the system says about one of its error codes, without the line end.
std::string system_message(unsigned long error);

}  // namespace qv5123
