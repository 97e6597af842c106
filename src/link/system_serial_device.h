#pragma once

#include <memory>

#include "link/serial_device.h"

namespace qv5123 {

/// A serial device of this operating system, not open yet. It takes the names that list_ports() gives.
///
/// A write ends early on Windows also when the line stands still for longer than the write timeout (1 ms per
/// byte at 19200 baud, none above); elsewhere it waits until the line goes on, is lost, or is closed.
std::unique_ptr<SerialDevice> make_serial_device();

}  // namespace qv5123
