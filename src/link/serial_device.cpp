#include "link/serial_device.h"

namespace qv5123 {
namespace {

std::string reason(const std::string& detail) {
  return detail.empty() ? "." : ": " + detail + ".";
}

std::string not_found_text(const std::string& name) {
  if (name.empty()) return "No port is chosen. Choose one from the list of ports.";
  return "There is no port " + name + ". Plug the board in, or choose another port.";
}

std::string busy_text(const std::string& name, const std::string& holder) {
  if (holder.empty())
    return "The port " + name +
           " is in use by another program. Close that program, then open the port again.";
  return "The port " + name + " is in use by " + holder + ". Close it there, then open the port again.";
}

std::string permission_text(const std::string& name, const std::string& remedy) {
  return "No permission to use the port " + name + ". " +
         (remedy.empty() ? "Ask the administrator of this computer for it." : remedy);
}

std::string text_of(OpenError error, const std::string& name, const std::string& detail) {
  switch (error) {
    case OpenError::none:
      return {};
    case OpenError::not_found:
      return not_found_text(name);
    case OpenError::permission_denied:
      return permission_text(name, detail);
    case OpenError::busy:
      return busy_text(name, detail);
    case OpenError::not_a_port:
      return name + " is not a serial port. Choose one from the list of ports.";
    case OpenError::bad_settings:
      return "The port " + name + " cannot be set up as asked" + reason(detail) +
             " Change the port's settings.";
    case OpenError::failed:
      break;
  }
  return "The port " + name + " cannot be opened" + reason(detail) +
         " Unplug it, plug it in and open it again.";
}

}  // namespace

OpenResult open_error(OpenError error, const std::string& name, const std::string& detail) {
  return {error, text_of(error, name, detail)};
}

}  // namespace qv5123
