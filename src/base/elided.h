#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

/// UTF-8 text for a message: one of more than `most` bytes is shown with "..." for its middle. For what comes
/// from files, whose words and names may be of any length.
inline std::string elided(std::string_view text, std::size_t most) {
  if (text.size() <= most) return std::string(text);
  const auto is_inside_character = [&](std::size_t at) { return (text[at] & 0xC0) == 0x80; };
  std::size_t head = most / 2;
  std::size_t tail = text.size() - most / 2;
  while (head > 0 && is_inside_character(head)) --head;
  while (tail < text.size() && is_inside_character(tail)) ++tail;
  return std::string(text.substr(0, head)) + "..." + std::string(text.substr(tail));
}

}  // namespace qv5123
