#include "registers/register_sheet.h"

#include <algorithm>
#include <utility>

#include "registers/hex_edit.h"
#include "registers/register_file.h"

namespace qv5123 {

void RegisterSheet::describe(RegDescription description) {
  description_ = std::move(description);
  shown_.assign(description_.registers.size(), {});
  make_current(description_.registers.size(), -1);
}

void RegisterSheet::show_category(int category, bool anew) {
  category_ = category;
  range_ = description_.registers_of(category);
  for (std::size_t reg = range_.first; anew && reg < range_.last; ++reg) shown_[reg].reset();
  clear_data();
  if (rows() == 0) {
    make_current(description_.registers.size(), -1);
    name_text_.clear();
    return;
  }
  make_current(range_.first, 0);
  show_entry(row(0));
}

std::u16string RegisterSheet::value_of(std::size_t reg) const {
  const RegEntry& entry = description_.registers[reg];
  if (shown_[reg]) return *shown_[reg];
  return entry.value >= 0 ? hex_text(entry.value, 2) : std::u16string();
}

int RegisterSheet::cell_address(std::size_t reg) const {
  const std::u16string_view text = description_.registers[reg].address_text;
  return ParseRegAddress(text.substr(0, kAddressCell));
}

void RegisterSheet::show_as(std::optional<std::u16string> text) {
  if (current_ < shown_.size()) shown_[current_] = std::move(text);
}

void RegisterSheet::make_current(std::size_t reg, int row) {
  current_ = reg;
  current_row_ = row;
  selected_rows_.clear();
  if (row >= 0) selected_rows_.push_back(row);
}

void RegisterSheet::show_entry(const RegEntry& entry) {
  address_text_ = entry.address_text;
  name_text_ = entry.name;
}

bool RegisterSheet::select_row(int row) {
  if (row < 0 || static_cast<std::size_t>(row) >= rows()) return false;
  const std::size_t before = current_;
  make_current(register_of(static_cast<std::size_t>(row)), row);
  if (current_ == before) return false;
  show_entry(description_.registers[current_]);
  clear_data();
  return true;
}

bool RegisterSheet::type_address(std::u16string_view text) {
  const int address = ParseRegAddress(text);
  address_text_ = text;
  name_text_.clear();
  value_text_.clear();
  clear_data();
  make_current(description_.find_address(address), -1);
  if (current_ < description_.registers.size()) name_text_ = description_.registers[current_].name;

  bool taken_over = false;
  std::vector<int> matches;
  for (std::size_t i = 0; i < rows(); ++i) {
    if (cell_address(register_of(i)) != address) continue;
    matches.push_back(static_cast<int>(i));
    taken_over |= select_row(matches.back());
  }
  selected_rows_ = std::move(matches);
  return taken_over;
}

int RegisterSheet::value_bits() const {
  const int number = ParseRegAddress(value_text_);
  return number < 0 ? 0 : number & 0xFF;
}

void RegisterSheet::set_bits(int bits) {
  value_text_ = hex_text(bits, 2);
}

bool RegisterSheet::set_field(std::size_t row, int number) {
  const RegBitField* bits = field(row);
  const int value = ParseRegAddress(value_text_);
  const auto now = bits && value >= 0 ? with_bit_field(bits->range, value, number) : std::nullopt;
  if (!now) return false;
  set_bits(*now);
  data_[row] = bit_field_data(bits->range, *now);
  return true;
}

void RegisterSheet::restore(Typed typed) {
  value_text_ = std::move(typed.value);
  data_ = std::move(typed.data);
}

void RegisterSheet::show_read(int value) {
  set_bits(value);
  if (current_ < description_.registers.size()) description_.registers[current_].know(value);
  show_data(value);
  show_as(std::nullopt);
}

void RegisterSheet::show_unread() {
  value_text_.clear();
  clear_data();
  show_as(u"");
}

void RegisterSheet::show_written() {
  show_as(value_text_);
  show_data(ParseRegAddress(value_text_) & 0xFF);
  mark_written(ParseRegAddress(address_text_));
}

// Of an address only the low 12 bits reach the chip.
void RegisterSheet::mark_written(int address) {
  for (RegEntry& entry : description_.registers) {
    if (entry.address >= 0 && (entry.address & 0xFFF) == (address & 0xFFF)) entry.overwrite();
  }
}

void RegisterSheet::store(std::size_t reg, int value) {
  description_.registers[reg].know(value);
  shown_[reg].reset();
}

std::size_t RegisterSheet::apply(const RegisterFile& file) {
  const std::size_t matches = apply_register_file(file, description_);
  for (RegEntry& entry : description_.registers) entry.begin();
  shown_.assign(shown_.size(), {});
  return matches;
}

void RegisterSheet::chip_was_reset() {
  for (RegEntry& entry : description_.registers) entry.older = entry.value >= 0 || entry.sent;
}

bool RegisterSheet::older_than_chip() const {
  const auto [first, last] = range_;
  for (std::size_t reg = first; reg < last; ++reg)
    if (description_.registers[reg].older) return true;
  return false;
}

std::size_t RegisterSheet::known() const {
  const auto known =
      std::ranges::count_if(description_.registers, [](auto& entry) { return entry.value >= 0; });
  return static_cast<std::size_t>(known);
}

const RegBitField* RegisterSheet::field(std::size_t row) const {
  const auto fields = description_.fields_of(current_);
  return row < fields.last - fields.first ? &description_.bit_fields[fields.first + row] : nullptr;
}

void RegisterSheet::show_data(int value) {
  for (std::size_t i = 0; i < kFieldRows; ++i) {
    const RegBitField* bits = field(i);
    data_[i] = bits ? bit_field_data(bits->range, value) : std::string();
  }
}

}  // namespace qv5123
