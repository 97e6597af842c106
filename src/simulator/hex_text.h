#pragma once

#include <cstdint>
#include <string>

namespace qv5123 {

/// `value` as `digits` hex digits; the chip talks in lowercase.
inline std::string hex_text(unsigned value, std::size_t digits = 2) {
  std::string text(digits, '0');
  for (std::size_t i = digits; i-- > 0; value >>= 4) text[i] = "0123456789abcdef"[value & 0xF];
  return text;
}

/// The same in uppercase, as addresses and values are shown to people.
inline std::string upper_hex_text(unsigned value, std::size_t digits = 2) {
  std::string text(digits, '0');
  for (std::size_t i = digits; i-- > 0; value >>= 4) text[i] = "0123456789ABCDEF"[value & 0xF];
  return text;
}

}  // namespace qv5123
