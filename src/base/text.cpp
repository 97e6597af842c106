#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/hex.h"

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

std::string padded(long long number, std::size_t width) {
  std::string digits = std::to_string(number);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

/// Unlike from_chars, takes no sign of its own.
std::optional<long long> parse_digits(std::string_view digits, int base) {
  long long value = 0;
  if (digits.empty() || digits.front() == '-') return std::nullopt;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return value;
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

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view take_word(std::string_view& rest) {
  constexpr std::string_view kBlanks = " \t\r\n";
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
  rest.remove_prefix(word.size());
  return word;
}

std::vector<std::string> filter_words(std::string_view text) {
  std::vector<std::string> words;
  for (std::string_view word = take_word(text); !word.empty(); word = take_word(text))
    words.push_back(lower_case(std::string(word)));
  return words;
}

std::string joined(const std::vector<std::string>& parts, std::string_view between) {
  std::string text;
  for (const std::string& part : parts) text.append(text.empty() ? "" : between).append(part);
  return text;
}

std::string csv_field(const std::string& text) {
  if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
  std::string field = "\"";
  for (const char c : text) field += c == '"' ? std::string("\"\"") : std::string(1, c);
  return field + "\"";
}

std::string latin1_to_utf8(std::string_view characters) {
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

std::string elided(std::string_view text, std::size_t most) {
  if (text.size() <= most) return std::string(text);
  const auto is_inside_character = [&](std::size_t at) { return (text[at] & 0xC0) == 0x80; };
  std::size_t head = most / 2;
  std::size_t tail = text.size() - most / 2;
  while (head > 0 && is_inside_character(head)) --head;
  while (tail < text.size() && is_inside_character(tail)) ++tail;
  return std::string(text.substr(0, head)) + "..." + std::string(text.substr(tail));
}

std::string counted(std::size_t number, const std::string& one) {
  return std::to_string(number) + " " + one + (number == 1 ? "" : "s");
}

std::string fixed(double value, int digits) {
  char text[400];
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits).ptr};
}

std::string iso_time(std::chrono::system_clock::time_point time) {
  using namespace std::chrono;
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(floor<milliseconds>(time - day));
  return padded(static_cast<int>(date.year()), 4) + "-" + padded(static_cast<unsigned>(date.month()), 2) +
         "-" + padded(static_cast<unsigned>(date.day()), 2) + "T" + padded(clock.hours().count(), 2) + ":" +
         padded(clock.minutes().count(), 2) + ":" + padded(clock.seconds().count(), 2) + "." +
         padded(clock.subseconds().count(), 3) + "Z";
}

std::optional<long long> parse_number(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const bool is_hex = text.starts_with("0x") || text.starts_with("0X");
  const auto value = is_hex ? parse_digits(text.substr(2), 16) : parse_digits(text, 10);
  return value && negative ? -*value : value;
}

std::optional<double> parse_real(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = !text.empty() && error == std::errc() && end == text.data() + text.size();
  return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::string hex(unsigned value, int digits) {
  std::size_t needed = 1;
  for (unsigned rest = value >> 4; rest != 0; rest >>= 4) ++needed;
  return "0x" + upper_hex(value, std::max(needed, static_cast<std::size_t>(digits)));
}

std::string shortest(double value) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

}  // namespace qv5123
