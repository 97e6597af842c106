#include "link/open_port_win32.h"

#include <windows.h>

#include "base/text_win32.h"
#include "link/open_error.h"

namespace qv5123 {

OpenResult system_error(unsigned long error, const std::string& name) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_DEVICE_NOT_CONNECTED:
      return open_error(OpenError::not_found, name);
    case ERROR_ACCESS_DENIED:  // a COM port that another program holds; its users need no permission
    case ERROR_SHARING_VIOLATION:
    case ERROR_BUSY:
      return open_error(OpenError::busy, name);
    case ERROR_INVALID_HANDLE:
    case ERROR_INVALID_FUNCTION:
      return open_error(OpenError::not_a_port, name);
    case ERROR_INVALID_PARAMETER:
    case ERROR_NOT_SUPPORTED:
      return open_error(OpenError::bad_settings, name, "its driver refuses the settings");
    default:
      return open_error(OpenError::failed, name, system_message(error));
  }
}

}  // namespace qv5123
