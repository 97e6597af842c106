#pragma once

#include <functional>
#include <memory>
#include <string>

#include "link/serial_device.h"

namespace qv5123 {

/// The near end of a pseudo-terminal: a program that opens the path it stands for talks to it as to a serial
/// port. It lives on when that program closes its end. open() takes any name and makes a new one.
class PseudoTerminal : public SerialDevice {
 public:
  /// The path to open, while this is open.
  virtual std::string path() const = 0;
};

struct PseudoTerminalOptions {
  /// Where to put a symbolic link to the path while it is open; empty for none.
  std::string link;
  /// Called, on the waiting thread, when a program has opened the other end.
  std::function<void()> on_host_opened;
};

/// Nothing on a system without pseudo-terminals.
std::unique_ptr<PseudoTerminal> make_pseudo_terminal(PseudoTerminalOptions options);

}  // namespace qv5123
