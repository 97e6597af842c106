#pragma once

#include <asm/termbits.h>

#include <string>

#include "link/serial_device.h"

namespace qv5123 {

/// Turns `line` into a raw line with `settings`: every byte passes as it is, a read takes what there is, and
/// what the settings do not speak of keeps the driver's value. DTR/DSR flow control has no place in it.
///
/// A stop bit code of one and a half asks for the long stop bit, which a UART makes one and a half bits with
/// 5 data bits and two otherwise.
void set_up_line(termios2& line, const LineSettings& settings);

/// What the driver made differently of `wanted`, in words; empty when the line is as asked. A baud rate
/// counts as met within 3 percent, more than any UART divisor is off at a usable rate.
std::string refused_settings(const termios2& wanted, const termios2& got);

}  // namespace qv5123
