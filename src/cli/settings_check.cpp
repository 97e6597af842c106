#include "cli/settings_check.h"

#include <algorithm>
#include <charconv>

#include "base/elided.h"
#include "cli/output.h"

namespace qv5123 {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

bool is_number(std::string_view word) {
  int value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  return end == word.data() + word.size() && error != std::errc::invalid_argument;
}

std::string number_problem(std::string_view word) {
  const std::string shown = "\"" + elided(printable(word), 40) + "\"";
  int value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (!is_number(word)) return shown + " is no decimal number; what follows is not read";
  if (error != std::errc() || value < 0 || value > 255) return shown + " is not in 0..255";
  return {};
}

std::string bytes_text(const Setting& setting, const UserDataImage& image) {
  std::string text;
  for (const std::size_t entry : setting.entries)
    text += (text.empty() ? "" : " ") + std::to_string(entry) + "=" + std::to_string(image.entry(entry));
  return text;
}

}  // namespace

std::vector<std::string> format_problems(std::string_view text) {
  std::vector<std::string> problems;
  std::size_t count = 0;
  std::size_t line = 1;
  bool readable = true;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = std::min(text.find_first_not_of(kBlanks, at), text.size());
    line += static_cast<std::size_t>(std::count(text.begin() + at, text.begin() + start, '\n'));
    if (start == text.size()) break;
    const std::size_t end = std::min(text.find_first_of(kBlanks, start), text.size());
    const std::string_view word = text.substr(start, end - start);
    const std::string problem = readable ? number_problem(word) : "";
    readable = readable && is_number(word);
    if (!problem.empty()) problems.push_back("line " + std::to_string(line) + ": " + problem);
    ++count;
    at = end;
  }
  if (count != UserDataImage::kSize) {
    problems.push_back("it has " + std::to_string(count) + " numbers instead of " +
                       std::to_string(UserDataImage::kSize));
  }
  return problems;
}

std::vector<std::string> value_problems(const SettingsTable& table, const UserDataImage& image) {
  std::vector<std::string> problems;
  for (const Setting& setting : table.settings()) {
    UserDataImage taken = image;
    setting.set(taken, setting.get(image));
    if (taken == image) continue;
    problems.push_back(setting.name + ": " + bytes_text(setting, image) +
                       " is beyond its range, its page would make it " + bytes_text(setting, taken));
  }
  return problems;
}

}  // namespace qv5123
