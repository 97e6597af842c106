#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "registers/reg_description.h"

namespace qv5123 {

/// A register of one byte, or some neighbouring bits of it.
struct RegisterBits {
  int address = 0;  ///< 0..0xFFFF
  int low = 0;      ///< the lowest of the bits, 0..7
  int width = 8;    ///< how many there are, 1..8

  int mask() const { return ((1 << width) - 1) << low; }
  /// Of the register's value, 0..255.
  int of(int value) const { return (value & mask()) >> low; }
  bool whole() const { return width == 8; }
};

/// What the description knows as "NAME" or "NAME.FIELD", letters of either case. Nothing where it knows no
/// such register or field, or the field's bits are none.
std::optional<RegisterBits> find_register(const RegDescription& description, std::string_view name);

/// What a register is to hold.
struct ExpectedRegister {
  std::string name;  ///< as the file has it, an address or a name
  int address = 0;   ///< 0..0xFFFF
  int value = 0;     ///< 0..0xFF, within the mask
  int mask = 0xFF;   ///< the bits that count
};

/// "GAIN_MAX_H: chip 0x12, expected 0x77", with the mask where not all bits count. `value` is the chip's.
std::string difference_text(const ExpectedRegister& expected, int value);

/// A text of such expectations, one on a line:
///
///     0xFA0A=0x77 //GAIN_MAX_H
///     0xFA0B&0xF0=0x30
///     GAIN_MAX_H=0x77
///     GAIN_MAX_H.HIGH=7
///
/// numbers decimal, or hex behind 0x; what stands behind "//" or "#" and blank lines do not count. So a
/// register text file is one. Names need a description.
struct RegisterExpectations {
  std::vector<ExpectedRegister> registers;
  std::string problem;  ///< what is wrong, with the number of the line; empty when nothing is

  static RegisterExpectations parse(std::string_view text, const RegDescription* description);
};

/// One line's "NAME=VALUE" in two parts, as above. The problem is in words; empty when there is none.
std::string expect_register(std::string_view name, std::string_view value, const RegDescription* description,
                            ExpectedRegister& expected);

}  // namespace qv5123
