#include "registers/reg_description.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/atomic_file.h"
#include "base/hex.h"
#include "link/register_write.h"
#include "registers/reg_scanner.h"

namespace qv5123 {
namespace {

// The file's bytes as they are: no conversion, a byte-order mark is the first line's first character, an odd
// last byte is dropped.
std::u16string utf16_of(std::string_view bytes) {
  std::u16string text(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto low = static_cast<unsigned char>(bytes[2 * i]);
    const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
    text[i] = static_cast<char16_t>(low | high << 8);
  }
  return text;
}

class Parser {
 public:
  Parser(std::u16string text, const std::string& name) : scanner_(std::move(text)), name_(name) {}

  RegDescription parse() {
    out_.chip = attribute(u"chip");
    scanner_.next_line();
    while (out_.problem.empty() && scanner_.line_starts_with(u"<category")) read_category();
    if (cut_ > 1) out_.remark += ", and " + std::to_string(cut_ - 1) + " more";
    return std::move(out_);
  }

 private:
  std::u16string attribute(std::u16string_view name) {
    const std::u16string_view text = scanner_.attribute(name).value_or(std::u16string_view());
    if (text.size() > RegDescription::kMaxText && ++cut_ == 1) {
      out_.remark = place() + "a text of " + std::to_string(text.size()) + " characters is cut to " +
                    std::to_string(RegDescription::kMaxText);
    }
    return std::u16string(text.substr(0, RegDescription::kMaxText));
  }

  std::string place() const { return name_ + ", line " + std::to_string(scanner_.line_number()) + ": "; }
  bool refuse(const std::string& why) {
    out_.problem = place() + why;
    return false;
  }
  bool room(std::size_t count, std::size_t most, const char* what) {
    return count < most || refuse("more than " + std::to_string(most) + " " + what);
  }

  void read_category() {
    if (!room(out_.categories.size(), RegDescription::kMaxCategories, "categories")) return;
    out_.categories.push_back(attribute(u"catname"));
    scanner_.next_line();
    int index = 0;
    while (scanner_.line_starts_with(u"<reg")) {
      if (!read_register(index)) return;
    }
    if (scanner_.line_starts_with(u"</category")) scanner_.next_line();
  }

  bool read_register(int& index) {
    if (!room(out_.registers.size(), RegDescription::kMaxRegisters, "registers")) return false;
    RegEntry entry;
    entry.category = static_cast<int>(out_.categories.size()) - 1;
    entry.index_in_category = index;
    entry.name = attribute(u"regname");
    entry.address_text = attribute(u"addr");
    const auto write = scanner_.attribute(u"write");
    if (!write) return refuse("register without \"write\"");
    entry.write = write->empty() ? '\0' : static_cast<char>(write->front() & 0xFF);
    entry.reset_text = attribute(u"reset");
    entry.address = ParseRegAddress(entry.address_text);
    scanner_.next_line();
    if (!read_bit_fields()) return false;
    // Without its end a register does not count, though its bit fields do: they go to the next one.
    if (!scanner_.line_starts_with(u"</reg>")) return true;
    scanner_.next_line();
    out_.registers.push_back(std::move(entry));
    ++index;
    return true;
  }

  bool read_bit_fields() {
    while (scanner_.line_starts_with(u"<bit")) {
      if (!room(out_.bit_fields.size(), RegDescription::kMaxBitFields, "bit fields")) return false;
      RegBitField field;
      field.reg = static_cast<int>(out_.registers.size());
      field.name = attribute(u"bitname");
      field.range = attribute(u"range");
      field.description = attribute(u"desc");
      field.sample = attribute(u"sample");
      out_.bit_fields.push_back(std::move(field));
      scanner_.next_line();
    }
    return true;
  }

  RegScanner scanner_;
  const std::string& name_;
  std::size_t cut_ = 0;  // texts
  RegDescription out_;
};

// Both tables are filled in the order of their key, so a key's entries stand together.
template <class Table, class Key>
RegDescription::Range range_of(const Table& table, int key, Key key_of) {
  const auto first = std::ranges::lower_bound(table, key, {}, key_of);
  const auto last = std::ranges::upper_bound(table, key, {}, key_of);
  return {static_cast<std::size_t>(first - table.begin()), static_cast<std::size_t>(last - table.begin())};
}

}  // namespace

int ParseRegAddress(std::u16string_view text) {
  std::size_t prefix = text.find(u"0x");
  if (prefix == text.npos) prefix = text.find(u"0X");
  if (prefix == text.npos) return -1;
  int value = 0;
  for (const char16_t c : text.substr(prefix + 2, 4)) {
    if (c == 0) break;
    if (c < u'z') value = value * 16 + hex_value(c);
  }
  return value;
}

RegDescription RegDescription::load(const std::filesystem::path& path, const std::string& name) {
  std::string bytes;
  const FileResult result = read_whole_file(path, bytes, kLargest);
  if (result.ok()) return parse_file(bytes, name);
  std::error_code ignored;
  RegDescription none;
  none.problem = std::filesystem::is_regular_file(path, ignored) ? result.text : kNotFound;
  return none;
}

RegDescription RegDescription::parse_file(std::string_view bytes, const std::string& name) {
  if (bytes.size() >= 2) return parse(utf16_of(bytes), name);
  RegDescription none;
  none.problem = kNotFound;
  return none;
}

RegDescription RegDescription::parse(std::u16string text, const std::string& name) {
  const std::size_t length = text.size();
  RegDescription description = Parser(std::move(text), name).parse();
  description.length = length;
  return description;
}

RegDescription::Range RegDescription::fields_of(std::size_t reg) const {
  return range_of(bit_fields, static_cast<int>(reg), &RegBitField::reg);
}

RegDescription::Range RegDescription::registers_of(int category) const {
  return range_of(registers, category, &RegEntry::category);
}

std::size_t RegDescription::find_address(int address) const {
  const auto found = std::ranges::find(registers, address, &RegEntry::address);
  return static_cast<std::size_t>(found - registers.begin());
}

}  // namespace qv5123
