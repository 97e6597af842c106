// The register description "regu.xml".
#include <string>

#include "fuzz_input.h"
#include "registers/reg_description.h"
#include "registers/register_file.h"

using namespace qv5123;

namespace {

void check_registers(const RegDescription& description) {
  fuzz::require(description.registers.size() <= RegDescription::kMaxRegisters, "no more registers than fit");
  fuzz::require(description.bit_fields.size() <= RegDescription::kMaxBitFields, "no more fields than fit");
  fuzz::require(description.categories.size() <= RegDescription::kMaxCategories,
                "no more categories than fit");
  for (std::size_t i = 0; i < description.registers.size(); ++i) {
    const RegEntry& entry = description.registers[i];
    fuzz::require(entry.category >= 0 && entry.category < static_cast<int>(description.categories.size()),
                  "a register's category exists");
    fuzz::require(entry.address >= -1 && entry.address <= 0xFFFF, "an address has 16 bits");
    const auto fields = description.fields_of(i);
    fuzz::require(fields.first <= fields.last && fields.last <= description.bit_fields.size(),
                  "a register's fields are in the table");
    const auto found = description.find_address(entry.address);
    fuzz::require(found <= i, "a register is found by its address");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::u16string text;
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    text += static_cast<char16_t>(data[i] | data[i + 1] << 8);
  }
  RegDescription description = RegDescription::parse(text);
  fuzz::require(description.length == text.size(), "the length is the file's");
  check_registers(description);
  std::size_t in_categories = 0;
  for (std::size_t i = 0; i < description.categories.size(); ++i) {
    const auto range = description.registers_of(static_cast<int>(i));
    in_categories += range.last - range.first;
  }
  fuzz::require(in_categories == description.registers.size(), "every register is in one category");
  // What is saved of it is read again.
  for (RegEntry& entry : description.registers) entry.value = entry.index_in_category & 0xFF;
  const RegisterFile file = RegisterFile::parse(register_file_text(description));
  for (const auto& line : file.lines) {
    fuzz::require(line.value >= 0 && line.value <= 0xFF, "a value is a byte");
  }
  return 0;
}
