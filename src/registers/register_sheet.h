#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "registers/reg_description.h"

namespace qv5123 {

struct RegisterFile;

/// What the register page shows: the registers of one category, the register whose address is in the address
/// edit, and its bit fields. Knows no widgets and no wire.
class RegisterSheet {
 public:
  /// Rows of the bit-field table. Further fields of a register are not shown.
  static constexpr std::size_t kFieldRows = 8;
  /// Characters of an "Addr" cell that count.
  static constexpr std::size_t kAddressCell = 9;

  RegisterSheet() { clear_data(); }

  /// Takes a description. No category of it is listed yet, and none of its registers is current.
  void describe(RegDescription description);
  const RegDescription& description() const { return description_; }

  /// Lists the registers of a category, with the values that are stored; its first one becomes the current
  /// register. Without `anew` they show what they showed.
  void show_category(int category, bool anew = true);
  /// -1 while the description has none.
  int category() const { return category_; }

  std::size_t rows() const { return range_.last - range_.first; }
  const RegEntry& row(std::size_t row) const { return description_.registers[range_.first + row]; }
  /// What a register's "Value" cell shows, listed or not; after a write more than its stored value knows.
  std::u16string value_of(std::size_t reg) const;
  /// The number that a register's "Addr" cell stands for.
  int cell_address(std::size_t reg) const;

  /// The register in the address edit; the number of registers, meaning none, for an unknown address.
  std::size_t current() const { return current_; }
  /// Its row, -1 when it is not listed.
  int current_row() const { return current_row_; }
  /// The current row; more than one when several rows have the address that was typed.
  const std::vector<int>& selected_rows() const { return selected_rows_; }
  const std::u16string& address_text() const { return address_text_; }
  const std::u16string& name_text() const { return name_text_; }
  const std::u16string& value_text() const { return value_text_; }
  /// The eight bits of the value text.
  int value_bits() const;

  /// Makes a row's register the current one. True if it was not before.
  bool select_row(int row);
  /// Takes an address from the address edit, listed, described or neither. True if that made another row's
  /// register the current one than the first that has this address.
  bool type_address(std::u16string_view text);
  void type_value(std::u16string_view text) { value_text_ = text; }
  void set_bits(int bits);
  /// Puts a number into the bits of the field in a row of the table. False where there is no value to put it
  /// into, or no such field.
  bool set_field(std::size_t row, int number);

  /// The value as it stands, with its parts under "Data".
  struct Typed {
    std::u16string value;
    std::array<std::string, kFieldRows> data;
  };
  Typed typed() const { return {value_text_, data_}; }
  void restore(Typed typed);

  /// A value that was read from the current register's address.
  void show_read(int value);
  /// The current register's address has not answered: it shows no value. What is known of it stays.
  void show_unread();
  /// The value text was written to the address: what is shown changes. The values known of the registers
  /// there do not, but are marked as written over.
  void show_written();
  /// A value that was read from register `reg` by a loading sequence.
  void store(std::size_t reg, int value);
  /// Takes the values of a register file, forgetting all others. See apply_register_file(). What changes from
  /// now on is compared with them.
  std::size_t apply(const RegisterFile& file);
  /// The chip was reset: what is shown of a register is what it had before, until it is read again.
  void chip_was_reset();
  /// Whether that is so of a register of the category.
  bool older_than_chip() const;
  /// How many registers have a value.
  std::size_t known() const;

  /// Position of a listed row in the register table.
  std::size_t register_of(std::size_t row) const { return range_.first + row; }

  /// The current register's bit field in a row of the table, or null.
  const RegBitField* field(std::size_t row) const;
  /// The "Data" column of the bit-field table.
  const std::string& data(std::size_t row) const { return data_[row]; }

 private:
  void make_current(std::size_t reg, int row);
  void show_entry(const RegEntry& entry);
  /// What the current register's cell shows from now on; nothing for its stored value.
  void show_as(std::optional<std::u16string> text);
  void mark_written(int address);
  void clear_data() { data_.fill(" "); }
  void show_data(int value);

  RegDescription description_;
  int category_ = -1;
  RegDescription::Range range_;
  std::vector<std::optional<std::u16string>> shown_;  ///< of each register, where it is not what is stored
  std::size_t current_ = 0;
  int current_row_ = -1;
  std::vector<int> selected_rows_;
  std::u16string address_text_ = u"0xF800";
  std::u16string name_text_;
  std::u16string value_text_ = u"0x00";
  std::array<std::string, kFieldRows> data_;
};

}  // namespace qv5123
