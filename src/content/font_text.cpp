#include "content/font_text.h"

#include <algorithm>

#include "base/hex.h"
#include "link/register_write.h"

namespace qv5123 {

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

std::string export_row(std::uint16_t row) {
  return "0x" + upper_hex(row >> 8) + ", 0x" + upper_hex(row) + ",     // " + row_picture(row);
}

/// Reads the export's line pattern the way scanf does, where a piece that does not match ends its pattern
/// without being consumed and leaves the value as it was.
class LineScanner {
 public:
  explicit LineScanner(std::string_view text) : text_(text) {}

  /// The pattern "0x%02X, ". Returns false if the text ended before the number.
  bool read_byte(int& value) {
    for (const char expected : {'0', 'x'}) {
      if (text_.empty()) return false;
      if (!take(expected)) return true;
    }
    skip_blanks();
    if (text_.empty()) return false;
    if (take_hex(value) && take(',')) skip_blanks();
    return true;
  }

  /// The pattern "%s" and the blanks after it. Returns false if the text ended before a word.
  bool skip_word() {
    skip_blanks();
    if (text_.empty()) return false;
    text_.remove_prefix(std::min(text_.find_first_of(kBlanks), text_.size()));
    skip_blanks();
    return true;
  }

 private:
  void skip_blanks() { text_.remove_prefix(std::min(text_.find_first_not_of(kBlanks), text_.size())); }

  bool take(char expected) {
    const bool matches = text_.starts_with(expected);
    if (matches) text_.remove_prefix(1);
    return matches;
  }

  static bool is_hex(char c) { return c == '0' || hex_value(static_cast<unsigned char>(c)) != 0; }

  /// At most two hex digits; `value` stays if there is none.
  bool take_hex(int& value) {
    int digits = 0;
    for (int number = 0; digits < 2 && !text_.empty() && is_hex(text_.front()); ++digits) {
      number = number * 16 + hex_value(static_cast<unsigned char>(text_.front()));
      text_.remove_prefix(1);
      value = number;
    }
    return digits > 0;
  }

  std::string_view text_;
};

}  // namespace

std::string export_font_text(const FontLibrary& library) {
  std::string text;
  text.reserve(1000000);
  for (int index = 0; index < FontLibrary::kGlyphs; ++index) {
    std::string number = std::to_string(index % FontLibrary::kPageGlyphs);
    for (const auto row : library.glyph(index).rows()) {
      text += export_row(row) + number + "\r\n";
      number.clear();
    }
    text += "\r\n\r\n";
  }
  return text;
}

void import_font_text(std::string_view text, FontLibrary& library) {
  LineScanner scanner(text);
  int high = 0;
  int low = 0;
  for (int line = 0;; ++line) {
    const bool whole = scanner.read_byte(high) && scanner.read_byte(low) &&  //
                       scanner.skip_word() && scanner.skip_word();
    const int index = line == 0 ? 0 : (line - 1) / Glyph::kHeight;
    if (!whole || index >= FontLibrary::kGlyphs) return;
    library.import_row(index, line - index * Glyph::kHeight, static_cast<std::uint16_t>(high * 256 + low));
  }
}

}  // namespace qv5123
