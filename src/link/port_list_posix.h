#pragma once

#include <filesystem>
#include <vector>

#include "link/port_list.h"

namespace qv5123 {

/// list_ports() on the kernel's and udev's trees below `root`: sys/class/tty and run/udev/data. Sorted by
/// kind of port, then number.
std::vector<PortInfo> list_ports_below(const std::filesystem::path& root);

}  // namespace qv5123
