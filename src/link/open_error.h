#pragma once

#include <string>

#include "link/serial_device.h"

namespace qv5123 {

/// The result of failing to open `name`, said in words and with what to do about it.
///
/// `detail` completes the sentence: for busy the program that holds the port, for permission_denied what to
/// do on this system, for bad_settings and failed the reason. It may be empty.
OpenResult open_error(OpenError error, const std::string& name, const std::string& detail = {});

}  // namespace qv5123
