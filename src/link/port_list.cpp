#include "link/port_list.h"

#include <charconv>

namespace qv5123 {

std::optional<PortInfo> port_from_properties(const PortProperties& properties) {
  constexpr unsigned long kDisabled = 22;
  if (properties.class_name.find("Ports") == std::string::npos || properties.problem == kDisabled)
    return std::nullopt;
  const std::optional<int> number = port_number_from_name(properties.port_name);
  if (!number) return std::nullopt;
  return PortInfo{*number, comm_device_name(*number), properties.friendly_name};
}

std::string comm_device_name(int port) {
  return (port < 10 ? "COM" : "\\\\.\\COM") + std::to_string(port);
}

std::string openable_name(const std::string& name) {
  std::string_view plain = name;
  if (plain.starts_with(R"(\\.\)")) plain.remove_prefix(4);
  const auto is = [plain](std::size_t at, char upper) { return (plain[at] & ~0x20) == upper; };
  if (plain.size() < 4 || !is(0, 'C') || !is(1, 'O') || !is(2, 'M')) return name;
  int number = 0;
  const char* end = plain.data() + plain.size();
  const auto parsed = std::from_chars(plain.data() + 3, end, number);
  return parsed.ec == std::errc() && parsed.ptr == end && number > 0 ? comm_device_name(number) : name;
}

std::optional<int> port_number_from_name(std::string_view name) {
  constexpr std::string_view kPrefix = "COM";
  const std::size_t at = name.find(kPrefix);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view digits = name.substr(at + kPrefix.size());
  int number = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (parsed.ec != std::errc() || number < 0) return std::nullopt;
  return number;
}

}  // namespace qv5123
