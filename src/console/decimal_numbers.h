#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace qv5123 {

/// Reads decimal integers out of a text the way repeated scanf("%d") calls do: white space before a number is
/// skipped, one sign is allowed, and a character that is no part of a number is never passed, so that every
/// read after it fails too.
class DecimalReader {
 public:
  explicit DecimalReader(std::string_view text) : text_(text) {}

  /// Reads the next number, modulo 2^32 (as two's complement), into `number` and returns true. At the end of
  /// the text or at a character that starts no number, returns false and leaves `number` unchanged.
  bool read(std::uint32_t& number);

 private:
  bool at_digit() const;

  std::string_view text_;
};

/// The low 8 bits of the first `count` numbers of `text`, always `count` entries. A read that fails repeats
/// the last number read, which is 0 before the first: a text of 1024 numbers read for 2048 ends with its last
/// number 1024 times over.
std::vector<std::uint8_t> read_decimal_bytes(std::string_view text, std::size_t count);

}  // namespace qv5123
