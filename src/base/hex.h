#pragma once

#include <cstddef>
#include <string>

namespace qv5123 {

/// Value of a hex digit of either case; every other character counts as 0, never an error.
constexpr int hex_value(char32_t c) {
  if (c >= U'0' && c <= U'9') return static_cast<int>(c - U'0');
  if (c >= U'a' && c <= U'f') return static_cast<int>(c - U'a') + 10;
  if (c >= U'A' && c <= U'F') return static_cast<int>(c - U'A') + 10;
  return 0;
}

/// The low `digits` hex digits of `value`, "0f".
inline std::string lower_hex(unsigned value, std::size_t digits = 2) {
  std::string text(digits, '0');
  for (std::size_t i = digits; i-- > 0; value >>= 4) text[i] = "0123456789abcdef"[value & 0xF];
  return text;
}
/// The same as "0F".
inline std::string upper_hex(unsigned value, std::size_t digits = 2) {
  std::string text(digits, '0');
  for (std::size_t i = digits; i-- > 0; value >>= 4) text[i] = "0123456789ABCDEF"[value & 0xF];
  return text;
}

}  // namespace qv5123
