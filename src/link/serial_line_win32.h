#pragma once

#include <windows.h>
#include <string>

#include "link/serial_device.h"

namespace qv5123 {

/// Puts `settings` into a control block read from the driver; all other fields keep the driver's values.
void set_up_line(DCB& line, const LineSettings& settings);

/// Reads return at once with what is buffered. Writes may take 1 ms per byte at 19200 baud, in whole
/// milliseconds, and as long as they like above. `baud_rate` must not be 0.
COMMTIMEOUTS line_timeouts(DWORD baud_rate);

/// What a failed call on the port says about it, `error` being the code of GetLastError().
OpenResult system_error(unsigned long error, const std::string& name);

}  // namespace qv5123
