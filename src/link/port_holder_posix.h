#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace qv5123 {

struct PortHolder {
  pid_t pid = 0;
  std::string program;
};

/// A process that has `device` open, as far as this user may see it. This process only counts when no other
/// has it. It looks through /proc, which takes tens of milliseconds: not for the window's thread.
std::optional<PortHolder> find_port_holder(const std::string& device);

}  // namespace qv5123
