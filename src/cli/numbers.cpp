#include "cli/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/hex.h"
#include "base/text.h"
#include "cli/complaint.h"

namespace qv5123 {
namespace {

constexpr std::size_t kShown = 40;  // of a word that may be as long as a file

/// Unlike from_chars, takes no sign of its own.
std::optional<long long> parse_digits(std::string_view digits, int base) {
  long long value = 0;
  if (digits.empty() || digits.front() == '-') return std::nullopt;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<long long> parse_number(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const bool is_hex = text.starts_with("0x") || text.starts_with("0X");
  const auto value = is_hex ? parse_digits(text.substr(2), 16) : parse_digits(text, 10);
  return value && negative ? -*value : value;
}

int number_in(const std::string& name, std::string_view text, int lowest, int highest) {
  const auto value = parse_number(text);
  if (!value) refuse(name + ": \"" + elided(text, kShown) + "\" is no number (0x hex or decimal)");
  if (*value < lowest || *value > highest) {
    refuse(name + ": " + elided(text, kShown) + " is not in " + std::to_string(lowest) + ".." +
           std::to_string(highest));
  }
  return static_cast<int>(*value);
}

std::optional<double> parse_real(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = !text.empty() && error == std::errc() && end == text.data() + text.size();
  return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

double real_number(const std::string& name, std::string_view text) {
  const auto value = parse_real(text);
  if (!value) refuse(name + ": \"" + elided(text, kShown) + "\" is no number");
  return *value;
}

std::string hex(unsigned value, int digits) {
  std::size_t needed = 1;
  for (unsigned rest = value >> 4; rest != 0; rest >>= 4) ++needed;
  return "0x" + upper_hex(value, std::max(needed, static_cast<std::size_t>(digits)));
}

std::string shortest(double value) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

}  // namespace qv5123
