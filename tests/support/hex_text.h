#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

inline std::string to_hex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

inline std::string from_hex(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2)
    bytes += static_cast<char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16));
  return bytes;
}

}  // namespace qv5123
