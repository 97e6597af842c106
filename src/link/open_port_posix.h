#pragma once

#include <string>

#include "link/serial_device.h"

namespace qv5123 {

struct OpenedPort {
  int fd = -1;  ///< -1 unless `result` is ok
  OpenResult result;
};

/// Opens the terminal device `name` without waiting for a carrier, and takes it for this process alone. The
/// line is left as it is.
OpenedPort open_port(const std::string& name);

/// Gives the port up again. What the line has not sent yet is dropped: the driver would otherwise hold the
/// close until it has, which a line under flow control may never do.
void close_port(int fd);

/// Drops what the driver holds unsent, if anything. A pseudo-terminal holds nothing of its own, and a flush
/// would reach into what its other end has not read yet.
void discard_unsent(int fd);

/// What a failed system call on the port says about it, `error` being its errno.
OpenResult system_error(int error, const std::string& name);

}  // namespace qv5123
