#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

/// The SHA-256 of the bytes, as 64 lower-case hex digits.
std::string sha256(std::string_view bytes);

}  // namespace qv5123
