#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "cli/complaint.h"
#include "cli/output.h"
#include "link/serial_device.h"

namespace qv5123 {

/// The options that every command takes.
struct GlobalOptions {
  std::string port;                ///< the first of `ports`; empty for none
  std::vector<std::string> ports;  ///< only provision takes more than one
  LineSettings line;               ///< 19200 8N1 unless options say otherwise
  bool simulate = false;
  std::chrono::milliseconds timeout{1800};  ///< as long as the window looks for a reply
  std::filesystem::path trace;
};

/// What a command works with.
struct Context {
  GlobalOptions globals;
  Output out;
  /// What the command line asks for. Commands set it while the command line is read.
  std::function<ExitCode()> action;
};

}  // namespace qv5123
