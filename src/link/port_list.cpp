#include "link/port_list.h"

#include "link/port_name.h"

namespace qv5123 {

std::optional<PortInfo> port_from_properties(const PortProperties& properties) {
  constexpr unsigned long kDisabled = 22;
  if (properties.class_name.find("Ports") == std::string::npos || properties.problem == kDisabled)
    return std::nullopt;
  const std::optional<int> number = port_number_from_name(properties.port_name);
  if (!number) return std::nullopt;
  return PortInfo{*number, comm_device_name(*number), properties.friendly_name};
}

}  // namespace qv5123
