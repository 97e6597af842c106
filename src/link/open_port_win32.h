#pragma once

#include <string>

#include "link/serial_device.h"

namespace qv5123 {

/// What a failed call on the port says about it, `error` being the code of GetLastError().
OpenResult system_error(unsigned long error, const std::string& name);

}  // namespace qv5123
