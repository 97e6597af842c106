#include "console/decimal_numbers.h"

namespace qv5123 {

bool DecimalReader::at_digit() const {
  return !text_.empty() && text_.front() >= '0' && text_.front() <= '9';
}

bool DecimalReader::read(std::uint32_t& number) {
  const auto start = text_.find_first_not_of(" \t\n\v\f\r");
  text_.remove_prefix(start == std::string_view::npos ? text_.size() : start);
  const bool negative = text_.starts_with('-');
  // A sign is consumed even when no digit follows, as scanf consumes it.
  if (negative || text_.starts_with('+')) text_.remove_prefix(1);
  if (!at_digit()) return false;
  std::uint32_t value = 0;
  for (; at_digit(); text_.remove_prefix(1))
    value = value * 10 + static_cast<std::uint32_t>(text_.front() - '0');
  number = negative ? 0 - value : value;
  return true;
}

std::vector<std::uint8_t> read_decimal_bytes(std::string_view text, std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  DecimalReader reader(text);
  std::uint32_t number = 0;
  for (auto& byte : bytes) {
    reader.read(number);
    byte = static_cast<std::uint8_t>(number & 0xFF);
  }
  return bytes;
}

}  // namespace qv5123
