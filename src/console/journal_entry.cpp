#include "console/journal_entry.h"

#include <charconv>
#include <cstdint>
#include <exception>

#include "base/atomic_file.h"
#include "base/hex.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

constexpr std::string_view kFirstLine = "QV5123 journal 3\n";
/// The same without the port.
constexpr std::string_view kOlderFirstLine = "QV5123 journal 2\n";

/// FNV-1a with its usual start and prime: it is to notice accidents, not forgers.
std::uint32_t checksum(std::string_view text) {
  std::uint32_t sum = 0x811C9DC5;
  for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 0x01000193;
  return sum;
}

std::string sum_line(std::string_view text) {
  return "sum " + lower_hex(checksum(text), 8) + '\n';
}

/// Nothing where Windows finds it to be no UTF-8.
std::optional<std::filesystem::path> path_of(std::string_view utf8) {
  try {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::string field(std::string_view name, std::string_view text) {
  return std::string(name) + ' ' + std::to_string(text.size()) + ' ' + std::string(text) + '\n';
}

/// Takes a field of that name off the beginning of `rest`; nothing if there is none.
std::optional<std::string_view> take_field(std::string_view name, std::string_view& rest) {
  if (!rest.starts_with(name)) return std::nullopt;
  std::string_view left = rest.substr(name.size());
  if (!left.starts_with(' ')) return std::nullopt;
  left.remove_prefix(1);
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(left.data(), left.data() + left.size(), length);
  const auto text_at = static_cast<std::size_t>(end - left.data()) + 1;
  if (error != std::errc() || text_at > left.size() || length >= left.size() - text_at) return std::nullopt;
  rest = left.substr(text_at + length + 1);
  return left.substr(text_at, length);
}

std::string text_of(const JournalEntry& entry, bool older) {
  std::string text(older ? kOlderFirstLine : kFirstLine);
  text +=
      field("file", path_text(entry.setting_file)) + field("font", entry.font) + field("typed", entry.typed);
  if (!older) text += field("port", entry.port);
  text += setting_text(entry.image);
  return text + sum_line(text);
}

}  // namespace

std::string journal_text(const JournalEntry& entry) {
  return text_of(entry, false);
}

std::optional<JournalEntry> read_journal(std::string_view text) {
  const bool older = text.starts_with(kOlderFirstLine);
  if (!older && !text.starts_with(kFirstLine)) return std::nullopt;
  std::string_view rest = text.substr(kFirstLine.size());
  const auto file = take_field("file", rest);
  const auto font = file ? take_field("font", rest) : std::nullopt;
  const auto typed = font ? take_field("typed", rest) : std::nullopt;
  if (!typed) return std::nullopt;
  std::string port;
  if (!older) {
    const auto told = take_field("port", rest);
    if (!told) return std::nullopt;
    port = *told;
  }
  auto path = path_of(*file);
  if (!path) return std::nullopt;
  JournalEntry entry{image_of(rest), std::move(*path), std::string(*font), std::string(*typed), port};
  if (text_of(entry, older) != text) return std::nullopt;
  return entry;
}

}  // namespace qv5123
