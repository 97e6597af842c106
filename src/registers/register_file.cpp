#include "registers/register_file.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "base/hex.h"
#include "console/slow_write.h"
#include "link/register_write.h"

namespace qv5123 {
namespace {

constexpr std::size_t kNameLimit = 256;

// The name as a narrow text: it ends at the first character whose low byte is 0.
void append_name(std::string& text, std::u16string_view name) {
  for (const char16_t c : name.substr(0, kNameLimit)) {
    const char narrow = static_cast<char>(c & 0xFF);
    if (narrow == 0) return;
    if (narrow == '\n') text += '\r';
    text += narrow;
  }
}

bool is_hex_digit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

void skip_blanks(std::string_view& line) {
  while (!line.empty() && is_blank(line.front())) line.remove_prefix(1);
}

bool take_literal(std::string_view& line, std::string_view literal) {
  if (!line.starts_with(literal)) return false;
  line.remove_prefix(literal.size());
  return true;
}

std::optional<int> take_hex(std::string_view& line, std::size_t most) {
  int value = 0;
  std::size_t digits = 0;
  for (; digits < most && digits < line.size() && is_hex_digit(line[digits]); ++digits) {
    value = value * 16 + hex_value(static_cast<unsigned char>(line[digits]));
  }
  line.remove_prefix(digits);
  return digits ? std::optional(value) : std::nullopt;
}

std::optional<RegisterFile::Line> parse_line(std::string_view line) {
  if (!take_literal(line, "0x")) return std::nullopt;
  const auto address = take_hex(line, 4);
  if (!address || !take_literal(line, "=0x")) return std::nullopt;
  const auto value = take_hex(line, 2);
  skip_blanks(line);
  if (!value || !take_literal(line, "//")) return std::nullopt;
  return RegisterFile::Line{*address, *value};
}

}  // namespace

RegisterFile RegisterFile::parse(std::string_view text) {
  RegisterFile file;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    skip_blanks(line);
    if (line.empty()) continue;
    if (const auto parsed = parse_line(line)) {
      file.lines.push_back(*parsed);
    } else if (++file.skipped == 1) {
      file.first_skipped = number;
    }
  }
  return file;
}

std::string register_file_text(const RegDescription& description) {
  std::string text;
  for (const RegEntry& entry : description.registers) {
    if (!entry.saved() || entry.value < 0) continue;
    text += "0x" + upper_hex(static_cast<unsigned>(entry.address), 4) + "=0x" +
            upper_hex(static_cast<unsigned>(entry.value)) + " //";
    append_name(text, entry.name);
    text += "\r\n";
  }
  return text;
}

SavedRegisters saved_registers(const RegDescription& description) {
  SavedRegisters registers;
  for (const RegEntry& entry : description.registers) {
    if (!entry.saved()) continue;
    ++(entry.value < 0 ? registers.unread : registers.saved);
    if (entry.written) ++registers.written;
  }
  return registers;
}

Task<FileResult> save_register_file(PageHost& host, std::filesystem::path path,
                                    const RegDescription& description) {
  std::function<FileResult()> work = [path, text = register_file_text(description)] {
    return write_file_atomically(path, text);
  };
  return write_in_background(host, std::move(path), std::move(work));
}

Task<LoadedRegisterFile> load_register_file(Background& background, std::filesystem::path path) {
  std::function<LoadedRegisterFile()> work = [path = std::move(path)] {
    LoadedRegisterFile loaded;
    std::string bytes;
    loaded.result = read_whole_file(path, bytes, RegisterFile::kLargest);
    loaded.file = RegisterFile::parse(bytes);
    return loaded;
  };
  return background.run<LoadedRegisterFile>(std::move(work));
}

// First the lines, then the registers: each may be many, and many of both may be of one address.
std::vector<RegisterFile::Line> known_registers(const RegDescription& description) {
  std::vector<RegisterFile::Line> known;
  for (const RegEntry& entry : description.registers)
    if (entry.value != -1) known.push_back({entry.address, entry.value});
  return known;
}

std::size_t apply_register_file(const RegisterFile& file, RegDescription& description) {
  struct Given {
    int value = -1;
    std::size_t lines = 0;
  };
  std::vector<Given> given(0x10000);
  for (const RegisterFile::Line& line : file.lines) {
    Given& at = given[static_cast<std::size_t>(line.address)];
    at = {line.value, at.lines + 1};
  }
  std::size_t matches = 0;
  for (RegEntry& entry : description.registers) {
    const Given last = entry.address < 0 ? Given() : given[static_cast<std::size_t>(entry.address)];
    entry.know(last.value);
    matches += last.lines;
  }
  return matches;
}

}  // namespace qv5123
