#include "cli/terminal.h"

#include <unistd.h>

#include <csignal>

namespace qv5123 {

bool stderr_is_terminal() {
  return isatty(STDERR_FILENO) == 1;
}

void survive_closed_pipes() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace qv5123
