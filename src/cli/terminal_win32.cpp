#include "cli/terminal.h"

#include <io.h>

#include <cstdio>

namespace qv5123 {

bool stderr_is_terminal() {
  return _isatty(_fileno(stderr)) != 0;
}

// Only a write tells here.
bool stdout_reader_gone() {
  return false;
}

// Writes to a closed pipe fail by themselves here, and handles have no numbers to be taken over.
void prepare_standard_streams() {}

}  // namespace qv5123
