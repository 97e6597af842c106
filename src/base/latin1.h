#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

/// The chip's 8-bit characters as UTF-8.
inline std::string latin1_to_utf8(std::string_view characters) {
  std::string utf8;
  utf8.reserve(characters.size());
  for (const char c : characters) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0 | code >> 6);
      utf8 += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return utf8;
}

}  // namespace qv5123
