#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv5123 {

/// Bytes of the character that the text, which is not empty, begins with; 0 where it begins with none.
std::size_t utf8_length(std::string_view text);

/// The text with U+FFFD for every byte that is no part of UTF-8: for what comes from a chip, a file or a
/// command line and goes where a strict reader refuses all of it for one such byte.
std::string whole_utf8(std::string_view text);

}  // namespace qv5123
