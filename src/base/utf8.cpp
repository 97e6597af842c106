#include "base/utf8.h"

namespace qv5123 {
namespace {

void append(std::string& text, char32_t c) {
  const auto put = [&text](char32_t bits) { text += static_cast<char>(bits); };
  if (c < 0x80) return put(c);
  if (c < 0x800) {
    put(0xC0 | c >> 6);
  } else {
    if (c < 0x10000) {
      put(0xE0 | c >> 12);
    } else {
      put(0xF0 | c >> 18);
      put(0x80 | (c >> 12 & 0x3F));
    }
    put(0x80 | (c >> 6 & 0x3F));
  }
  put(0x80 | (c & 0x3F));
}

bool is_high_half(char32_t c) {
  return c >= 0xD800 && c < 0xDC00;
}
bool is_low_half(char32_t c) {
  return c >= 0xDC00 && c < 0xE000;
}

}  // namespace

std::string utf8(std::u16string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (is_high_half(c) && i + 1 < text.size() && is_low_half(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
    } else if (is_high_half(c) || is_low_half(c)) {
      c = 0xFFFD;
    }
    append(result, c);
  }
  return result;
}

std::string lower_case(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

}  // namespace qv5123
