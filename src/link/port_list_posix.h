#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "link/port_list.h"

namespace qv5123 {

/// list_ports() on the kernel's and udev's trees below `root`: sys/class/tty and run/udev/data. Sorted by
/// kind of port, then number.
std::vector<PortInfo> list_ports_below(const std::filesystem::path& root);

/// adapter_latency() on the kernel's tree below `root`.
std::optional<std::chrono::milliseconds> adapter_latency_below(const std::filesystem::path& root,
                                                               const std::string& device);

}  // namespace qv5123
