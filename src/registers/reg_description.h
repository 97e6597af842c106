#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

/// The number in an address or value text: up to four hexadecimal digits behind the first "0x" (or, if there
/// is none, the first "0X"), 0..65535. Of the four characters, one below 'z' that is no hex digit counts as
/// the digit 0; 'z' and above are skipped. Nothing behind the prefix gives 0, no prefix gives -1.
int ParseRegAddress(std::u16string_view text);

/// A register of the description. Texts whose attribute was missing are empty.
struct RegEntry {
  int category = 0;           ///< index of the category that holds it
  int index_in_category = 0;  ///< its row in the page's list
  std::u16string name;
  std::u16string address_text;  ///< as written
  std::u16string reset_text;
  char write = 0;        ///< low byte of the attribute's first character; 'W' marks a register that is saved
  int value = -1;        ///< last value known, 0..255; -1 not yet read
  int address = -1;      ///< of the address text, 0..65535; -1 when that holds no "0x"
  bool written = false;  ///< by hand, since the value became known
  /// The first value known since the description or a register file was read, which later ones are compared
  /// with; kNone, or kLost where the register was written before anybody had read it.
  int before = kNone;
  bool sent = false;   ///< by hand, known before or not, and not read since
  bool older = false;  ///< what is known of it is from before the chip was reset

  static constexpr int kNone = -1;
  static constexpr int kLost = -2;

  bool saved() const { return write == 'W'; }
  /// Whether it is another than at the beginning, or may be.
  bool changed() const { return sent || (value >= 0 && before != kNone && value != before); }
  /// Takes what was read from the chip, or is on its way there from a file; -1 forgets.
  void know(int now) {
    value = now;
    written = false;
    sent = false;
    older = false;
    if (before == kNone && now >= 0) before = now;
  }
  /// It was written by hand.
  void overwrite() {
    written = value >= 0;
    sent = true;
    if (before == kNone) before = kLost;
  }
  /// What is known now is what later values are compared with.
  void begin() { before = value; }
};

/// A group of bits of a register. Description and sample may hold CR LF line breaks.
struct RegBitField {
  int reg = 0;  ///< position of its register in the table
  std::u16string name;
  std::u16string range;  ///< "[7:4]" or "[3]"
  std::u16string description;
  std::u16string sample;
};

/// What the register page knows of the chip's registers, from the description file "regu.xml".
///
/// The file is UTF-16 little-endian and looks like XML, but is read line by line: a line counts when it
/// begins, without blanks before it, with a tag below, and its attributes must come in this order.
///
///     first line        chip
///     <category         catname
///     <reg              regname addr write reset
///     <bit              bitname range desc sample     (zero or more, of the register above)
///     </reg>
///     </category>
///
/// So `<reg regname="GAIN_MAX_H" ...` begins, behind the two bytes FF FE of the file,
///
///     3C 00 72 00 65 00 67 00 20 00 72 00 65 00 67 00 6E 00 61 00 6D 00 65 00 3D 00 22 00 47 00 ...
///
/// An attribute is its name, two characters that are not looked at, and everything up to the next double
/// quote. "#$" inside one is a line break; a lone '#' takes the character behind it along, a lone '$' the
/// one before it. A register without "</reg>" is overwritten by the next one, which inherits its bit fields.
/// The first line that fits nowhere ends the description.
struct RegDescription {
  static constexpr std::size_t kMaxCategories = 32;
  static constexpr std::size_t kMaxRegisters = 2048;
  static constexpr std::size_t kMaxBitFields = 4096;
  /// Characters of a name or text that are kept: a line of 16 for each of 256 values. More would hold up the
  /// window.
  static constexpr std::size_t kMaxText = 4096;
  /// Bytes of the file: a thousand characters of text for each bit field, twice over.
  static constexpr std::uintmax_t kLargest = std::uintmax_t{16} << 20;
  /// What problem says when there is no file, or one of less than two bytes.
  static constexpr std::string_view kNotFound = "Can't find regu.xml!";

  /// Reads the file. `path` is relative to the current directory; `name` is what problems and remarks call
  /// it.
  static RegDescription load(const std::filesystem::path& path = "regu.xml",
                             const std::string& name = "regu.xml");
  /// Reads what such a file holds; of less than two bytes it says kNotFound.
  static RegDescription parse_file(std::string_view bytes, const std::string& name);
  /// Reads a file's text. More categories, registers or bit fields than above, or a register without `write`,
  /// end it with a problem that names the line; the registers before it are kept. A text that is too long is
  /// cut, with a remark.
  static RegDescription parse(std::u16string text, const std::string& name = "regu.xml");

  /// Indexes into a table, [first, last).
  struct Range {
    std::size_t first = 0;
    std::size_t last = 0;
  };
  /// The bit fields of register `reg`, in file order.
  Range fields_of(std::size_t reg) const;
  /// The registers of a category, which stand together in the table.
  Range registers_of(int category) const;
  /// The first register at `address`; the number of registers, meaning none, if there is none.
  std::size_t find_address(int address) const;

  std::size_t length = 0;  ///< characters in the file
  std::u16string chip;
  std::vector<std::u16string> categories;
  std::vector<RegEntry> registers;
  std::vector<RegBitField> bit_fields;
  std::string problem;  ///< what went wrong, in words; empty when all of the file was read
  std::string remark;   ///< what was left out although all was read; empty when nothing was
};

}  // namespace qv5123
