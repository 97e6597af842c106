#pragma once

#include <memory>

#include "cli/command.h"

namespace qv5123 {

/// The whole tree of commands, which work with `context`.
std::unique_ptr<CLI::App> make_command_line(Context& context);

/// Reads the command line, does what it asks for and returns the exit code.
ExitCode run_command_line(int argc, const char* const* argv);

}  // namespace qv5123
