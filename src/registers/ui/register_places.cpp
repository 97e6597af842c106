#include "registers/ui/register_places.h"

#include "registers/ui/register_list_model.h"

namespace qv5123 {
namespace {

/// "0xF801, AE".
QString place_of(const RegDescription& description, const RegEntry& entry) {
  const auto category = static_cast<std::size_t>(entry.category);
  if (category >= description.categories.size()) return shown_name(entry.address_text);
  return shown_name(entry.address_text) + ", " + shown_name(description.categories[category]);
}

}  // namespace

std::vector<FoundPlace> register_places(const RegDescription& description) {
  std::vector<FoundPlace> places;
  int id = 0;
  for (const RegEntry& entry : description.registers)
    places.push_back({shown_name(entry.name), place_of(description, entry), id++});
  for (const RegBitField& bits : description.bit_fields) {
    const auto reg = static_cast<std::size_t>(bits.reg);
    // One of a register that the description's end cut off.
    if (reg >= description.registers.size()) break;
    const RegEntry& entry = description.registers[reg];
    const QString part = shown_name(entry.name) + shown_name(bits.range);
    places.push_back({shown_name(bits.name), part + ", " + place_of(description, entry), id++});
  }
  return places;
}

std::optional<std::size_t> register_of_place(const RegDescription& description, int id) {
  const auto at = static_cast<std::size_t>(id);
  const std::size_t registers = description.registers.size();
  if (at < registers) return at;
  if (at - registers >= description.bit_fields.size()) return std::nullopt;
  const auto reg = static_cast<std::size_t>(description.bit_fields[at - registers].reg);
  return reg < registers ? std::optional(reg) : std::nullopt;
}

}  // namespace qv5123
