#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

/// UTF-8 text as a string of JSON, with its quotation marks. What is no UTF-8 becomes U+FFFD.
std::string json_text(std::string_view text);

}  // namespace qv5123
