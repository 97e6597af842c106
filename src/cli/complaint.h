#pragma once

#include <string>

namespace qv5123 {

/// What the program's exit code tells.
enum class ExitCode {
  done = 0,
  negative = 1,    ///< the chip did not answer, or what was asked for is not so
  bad_input = 2,   ///< wrong usage, a wrong value, a file that cannot be read or written
  port_failed = 3  ///< the port cannot be opened, or is gone
};

/// Thrown by commands: the code to end with and one line for stderr, which may be empty.
struct Complaint {
  ExitCode code;
  std::string text;
};

[[noreturn]] inline void refuse(const std::string& text) {
  throw Complaint{ExitCode::bad_input, text};
}

}  // namespace qv5123
