#include "base/utf8.h"

#include <array>

namespace qv5123 {
namespace {

unsigned char byte_at(std::string_view text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

}  // namespace

std::size_t utf8_length(std::string_view text) {
  constexpr std::array<char32_t, 5> kLowest{0, 0, 0x80, 0x800, 0x10000};
  const unsigned char first = byte_at(text, 0);
  if (first < 0x80) return 1;
  const std::size_t length = first >> 5 == 0x06 ? 2 : first >> 4 == 0x0E ? 3 : first >> 3 == 0x1E ? 4 : 0;
  if (length == 0) return 0;
  char32_t character = first & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (byte_at(text, i) >> 6 != 0x02) return 0;
    character = character << 6 | (byte_at(text, i) & 0x3Fu);
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  return character < kLowest[length] || surrogate || character > 0x10FFFF ? 0 : length;
}

std::string whole_utf8(std::string_view text) {
  std::string whole;
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    whole += length > 0 ? text.substr(0, length) : "\xEF\xBF\xBD";
    text.remove_prefix(length > 0 ? length : 1);
  }
  return whole;
}

}  // namespace qv5123
