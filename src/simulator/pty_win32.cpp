#include "simulator/pty.h"

namespace qv5123 {

// Windows has pseudo-consoles, but nothing that a program could open as a COM port.
std::unique_ptr<PseudoTerminal> make_pseudo_terminal(PseudoTerminalOptions) {
  return nullptr;
}

}  // namespace qv5123
