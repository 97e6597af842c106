#include "registers/register_names.h"

#include <algorithm>

#include "base/text.h"

namespace qv5123 {
namespace {

constexpr int kBits = 8;

bool is_named(std::u16string_view name, std::string_view lower) {
  return lower_case(utf8(name)) == lower;
}

/// Of "[7:4]" or "[3]".
std::optional<RegisterBits> bits_of(int address, std::string_view range) {
  if (!range.starts_with('[') || !range.ends_with(']')) return std::nullopt;
  range = range.substr(1, range.size() - 2);
  const std::size_t colon = range.find(':');
  const auto high = parse_number(trimmed(range.substr(0, colon)));
  const auto low = colon == range.npos ? high : parse_number(trimmed(range.substr(colon + 1)));
  if (!high || !low || *low < 0 || *high < *low || *high >= kBits) return std::nullopt;
  return RegisterBits{address, static_cast<int>(*low), static_cast<int>(*high - *low + 1)};
}

std::size_t register_named(const RegDescription& description, std::string_view lower) {
  std::size_t reg = 0;
  while (reg < description.registers.size() && !is_named(description.registers[reg].name, lower)) ++reg;
  return reg;
}

std::optional<RegisterBits> field_named(const RegDescription& description, std::size_t reg,
                                        std::string_view lower) {
  const auto [first, last] = description.fields_of(reg);
  for (std::size_t i = first; i < last; ++i) {
    const RegBitField& field = description.bit_fields[i];
    if (is_named(field.name, lower)) return bits_of(description.registers[reg].address, utf8(field.range));
  }
  return std::nullopt;
}

/// An address, or a name of the description. Text that is neither is the problem.
std::string find(std::string_view name, const RegDescription* description, RegisterBits& bits) {
  if (const auto address = parse_number(name)) {
    if (*address < 0 || *address > 0xFFFF || (*address >= 0x1000 && *address < 0xF000))
      return std::string(name) + " is no register of the ISP";
    bits = {0xF000 | (static_cast<int>(*address) & 0xFFF)};
    return {};
  }
  const auto found = description ? find_register(*description, name) : std::nullopt;
  if (!found)
    return description ? "the description has no register \"" + std::string(name) + "\""
                       : "\"" + std::string(name) + "\" is no address, and names need a description";
  bits = *found;
  return {};
}

std::string_view without_comment(std::string_view line) {
  return trimmed(line.substr(0, std::min(line.find("//"), line.find('#'))));
}

}  // namespace

std::optional<RegisterBits> find_register(const RegDescription& description, std::string_view name) {
  const std::string lower = lower_case(std::string(name));
  std::size_t reg = register_named(description, lower);
  if (reg < description.registers.size()) {
    const int address = description.registers[reg].address;
    return address > 0 ? std::optional(RegisterBits{address}) : std::nullopt;
  }
  const std::size_t point = lower.rfind('.');
  if (point == lower.npos) return std::nullopt;
  reg = register_named(description, std::string_view(lower).substr(0, point));
  if (reg == description.registers.size() || description.registers[reg].address <= 0) return std::nullopt;
  return field_named(description, reg, std::string_view(lower).substr(point + 1));
}

std::string expect_register(std::string_view name, std::string_view value, const RegDescription* description,
                            ExpectedRegister& expected) {
  const std::size_t mark = name.find('&');
  const std::string_view place = trimmed(name.substr(0, mark));
  RegisterBits bits;
  const std::string fault = find(place, description, bits);
  if (!fault.empty()) return fault;
  const auto mask = mark == name.npos ? bits.mask() : parse_number(trimmed(name.substr(mark + 1)));
  if (!mask || *mask < 1 || *mask > 0xFF || (mark != name.npos && !bits.whole()))
    return "\"" + std::string(name) + "\": a mask is 1..255, and of a whole register";
  const auto number = parse_number(trimmed(value));
  if (!number || *number < 0 || *number > 0xFF) return "\"" + std::string(value) + "\" is no number 0..255";
  const int shifted = static_cast<int>(*number) << bits.low;
  if ((shifted & ~static_cast<int>(*mask)) != 0) return "\"" + std::string(value) + "\" is beyond its bits";
  expected = {std::string(place), bits.address, shifted, static_cast<int>(*mask)};
  return {};
}

std::string difference_text(const ExpectedRegister& expected, int value) {
  const auto byte = [](int number) { return hex(static_cast<unsigned>(number), 2); };
  return expected.name + ": chip " + byte(value & expected.mask) + ", expected " + byte(expected.value) +
         (expected.mask == 0xFF ? "" : ", mask " + byte(expected.mask));
}

RegisterExpectations RegisterExpectations::parse(std::string_view text, const RegDescription* description) {
  RegisterExpectations result;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = without_comment(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty()) continue;
    const std::size_t equals = line.find('=');
    ExpectedRegister expected;
    result.problem = equals == line.npos ? "not of the form \"0xF800=0x1A\""
                                         : expect_register(line.substr(0, equals), line.substr(equals + 1),
                                                           description, expected);
    if (!result.problem.empty()) {
      result.problem = "line " + std::to_string(number) + ": " + result.problem;
      return result;
    }
    result.registers.push_back(std::move(expected));
  }
  return result;
}

}  // namespace qv5123
