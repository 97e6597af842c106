#include "console/setting_format.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "base/text.h"
#include "console/decimal_numbers.h"

namespace qv5123 {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";
constexpr std::size_t kShownOfWord = 40;

/// One word of the text.
struct Word {
  std::string_view text;
  std::size_t line = 1;
  bool is_number = false;
  bool is_byte = false;  ///< a number 0..255
};

Word judged(std::string_view text, std::size_t line) {
  std::string_view digits = text;
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') digits.remove_prefix(1);
  int value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool is_number = end == digits.data() + digits.size() && error != std::errc::invalid_argument;
  return {text, line, is_number, is_number && error == std::errc() && value >= 0 && value <= 255};
}

std::vector<Word> words_of(std::string_view text) {
  std::vector<Word> words;
  std::size_t line = 1;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = std::min(text.find_first_not_of(kBlanks, at), text.size());
    line += static_cast<std::size_t>(std::count(text.begin() + at, text.begin() + start, '\n'));
    if (start == text.size()) break;
    at = std::min(text.find_first_of(kBlanks, start), text.size());
    words.push_back(judged(text.substr(start, at - start), line));
  }
  return words;
}

std::string at_line(const Word& word) {
  std::string shown(word.text);
  for (char& c : shown) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || (code >= 0x7F && code < 0xA0)) c = '?';
  }
  return "line " + std::to_string(word.line) + ": \"" + elided(latin1_to_utf8(shown), kShownOfWord) + "\"";
}

/// Text that is encoded otherwise than setting files are; empty for what may be one.
std::string encoding_of(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) return "it begins with a byte-order mark";
  const bool wide = text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") ||
                    text.substr(0, 64).find('\0') != std::string_view::npos;
  return wide ? "it is UTF-16 or no text" : "";
}

std::string why_not_read(std::string_view text, const std::vector<Word>& words) {
  const std::string encoding = encoding_of(text);
  if (!encoding.empty()) return encoding;
  const auto wrong = std::ranges::find(words, false, &Word::is_number);
  return wrong == words.end() ? "" : at_line(*wrong) + " is no decimal number";
}

std::string numbers(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " number" : " numbers");
}

/// How many numbers a reader gets, and what stands for those that are missing.
std::string missing(std::string_view text, std::size_t count) {
  DecimalReader reader(text);
  std::uint32_t number = 0;
  std::size_t read = 0;
  while (read < count && reader.read(number)) ++read;
  if (read == count) return {};
  return numbers(read) + " of " + std::to_string(count) + ", the rest repeats " +
         std::to_string(number & 0xFF);
}

/// What a count of numbers other than `count` comes to; empty where there is none.
std::string miscounted(std::string_view text, std::size_t words, std::size_t count) {
  const std::string few = missing(text, count);
  if (!few.empty() || words <= count) return few;
  return "more than " + numbers(count) + ", the rest is not read";
}

std::string beyond(const std::vector<Word>& words) {
  const auto is_beyond = [](const Word& word) { return word.is_number && !word.is_byte; };
  const auto first = std::ranges::find_if(words, is_beyond);
  if (first == words.end()) return {};
  const auto count = static_cast<std::size_t>(std::ranges::count_if(words, is_beyond));
  return numbers(count) + " not in 0..255, of which the low 8 bits count (" + at_line(*first) + ")";
}

}  // namespace

std::vector<std::string> format_problems(std::string_view text) {
  const std::vector<Word> words = words_of(text);
  std::vector<std::string> problems;
  const std::string encoding = encoding_of(text);
  if (!encoding.empty()) problems.push_back(encoding);
  for (const Word& word : words) {
    if (word.is_byte) continue;
    problems.push_back(at_line(word) + (word.is_number ? " is not in 0..255"
                                                       : " is no decimal number; what follows is not read"));
    if (!word.is_number) break;
  }
  const std::string count = miscounted(text, words.size(), UserDataImage::kSize);
  if (!count.empty()) problems.push_back(count);
  return problems;
}

std::string format_summary(std::string_view text, std::size_t count) {
  const std::vector<Word> words = words_of(text);
  std::string summary = miscounted(text, words.size(), count);
  const std::string why = why_not_read(text, words);
  const bool is_more = missing(text, count).empty() && words.size() > count;
  if (!is_more && !why.empty()) summary += (summary.empty() ? "" : " ") + ("(" + why + ")");
  const std::string wrapped = beyond(words);
  if (!wrapped.empty()) summary += (summary.empty() ? "" : "; ") + wrapped;
  return summary;
}

}  // namespace qv5123
