#include "content/image_version.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>

namespace qv5123 {
namespace {

constexpr std::size_t kLongest = 48;
constexpr int kMostMarks = 2;  // between the word and its number

bool is_printable(char c) {
  return c >= ' ' && c <= '~';
}

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

bool is_letter(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

bool is_mark(char c) {
  return is_printable(c) && !is_letter(c) && !is_digit(c);
}

/// Whether `text` has "1.2" in front.
bool begins_with_number(std::string_view text) {
  const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
  return digits > 0 && digits + 1 < text.size() && text[digits] == '.' && is_digit(text[digits + 1]);
}

/// Takes the letters in front, which have to be a word for version.
bool take_word(std::string_view& text) {
  const auto end = std::ranges::find_if_not(text, is_letter);
  std::string word(text.begin(), end);
  std::ranges::transform(word, word.begin(), [](unsigned char c) { return std::tolower(c); });
  text.remove_prefix(word.size());
  return word == "v" || word == "ver" || word == "version";
}

/// Where the text names a version.
std::optional<std::size_t> version_at(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!is_letter(text[at]) || (at > 0 && is_letter(text[at - 1]))) continue;
    std::string_view rest = text.substr(at);
    if (!take_word(rest)) continue;
    for (int marks = 0; marks < kMostMarks && !rest.empty() && is_mark(rest[0]); ++marks)
      rest.remove_prefix(1);
    if (begins_with_number(rest)) return at;
  }
  return std::nullopt;
}

std::string trimmed(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
  text = text.substr(first, kLongest);
  return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

}  // namespace

std::string version_in_image(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto end = static_cast<std::size_t>(std::ranges::find_if_not(bytes, is_printable) - bytes.begin());
    const std::string_view text = bytes.substr(0, end);
    // Of a long text the version is what counts.
    if (const auto at = version_at(text)) return trimmed(text.substr(*at < kLongest / 2 ? 0 : *at));
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
  }
  return {};
}

}  // namespace qv5123
