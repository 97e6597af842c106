#include "console/journal_entry.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <exception>
#include <vector>

#include "base/atomic_file.h"
#include "console/decimal_numbers.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

constexpr std::string_view kFirstLine = "QV5123 journal 1\nfile ";

/// FNV-1a with its usual start and prime: it is to notice accidents, not forgers.
std::uint32_t checksum(std::string_view text) {
  std::uint32_t sum = 0x811C9DC5;
  for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 0x01000193;
  return sum;
}

std::string sum_line(std::string_view text) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string line = "sum ";
  for (int shift = 28; shift >= 0; shift -= 4) line += kDigits[checksum(text) >> shift & 0xF];
  return line + '\n';
}

/// Nothing where Windows finds it to be no UTF-8.
std::optional<std::filesystem::path> path_of(std::string_view utf8) {
  try {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

UserDataImage image_of(std::string_view lines) {
  std::array<std::uint8_t, UserDataImage::kSize> bytes{};
  const std::vector<std::uint8_t> numbers = read_decimal_bytes(lines, UserDataImage::kSize);
  std::copy(numbers.begin(), numbers.end(), bytes.begin());
  UserDataImage image;
  image.assign(bytes);
  image.mark_loaded();
  return image;
}

}  // namespace

std::string journal_text(const JournalEntry& entry) {
  const std::string path = path_text(entry.setting_file);
  std::string text(kFirstLine);
  text += std::to_string(path.size()) + ' ' + path + '\n' + setting_text(entry.image);
  return text + sum_line(text);
}

std::optional<JournalEntry> read_journal(std::string_view text) {
  if (!text.starts_with(kFirstLine)) return std::nullopt;
  const std::string_view rest = text.substr(kFirstLine.size());
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), length);
  const auto path_at = static_cast<std::size_t>(end - rest.data()) + 1;
  if (error != std::errc() || path_at > rest.size() || length > rest.size() - path_at) return std::nullopt;
  auto path = path_of(rest.substr(path_at, length));
  if (!path) return std::nullopt;
  JournalEntry entry;
  entry.setting_file = std::move(*path);
  entry.image = image_of(rest.substr(path_at + length));
  if (journal_text(entry) != text) return std::nullopt;
  return entry;
}

}  // namespace qv5123
