#include "cli/terminal.h"

#include <io.h>

#include <cstdio>

namespace qv5123 {

bool stderr_is_terminal() {
  return _isatty(_fileno(stderr)) != 0;
}

// Writes to a closed pipe fail by themselves here.
void survive_closed_pipes() {}

}  // namespace qv5123
