#pragma once

#include <memory>

#include "cli/command.h"

/// qv5123ctl: global options, a command, its own options. A command is a function of its options that returns
/// the exit code, or throws a Complaint: one line on stderr and the code. What it finds goes to stdout, as
/// lines or with --json as one JSON value; everything else goes to stderr.
///
///     $ qv5123ctl --simulate --json reg read 0xF922
///     [{"address":63778,"value":18}]
namespace qv5123 {

/// The whole tree of commands, which work with `context`.
std::unique_ptr<CLI::App> make_command_line(Context& context);

/// Reads the command line, does what it asks for and returns the exit code.
ExitCode run_command_line(int argc, const char* const* argv);

}  // namespace qv5123
