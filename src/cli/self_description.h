#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace qv5123 {

/// The manual page of section 1, made of the help of all commands.
std::string manual_page(const CLI::App& app);

/// The completion for bash, made of the same.
std::string bash_completion(const CLI::App& app);

// What help, manual page and completion show of the tree of commands.

/// The commands below, without hidden ones.
std::vector<const CLI::App*> subcommands(const CLI::App& app);
/// What starts with a dash.
std::vector<const CLI::Option*> options(const CLI::App& app);
/// What does not.
std::vector<const CLI::Option*> arguments(const CLI::App& app);
/// An option's name as it is typed, the long one if it has both.
std::string option_name(const CLI::Option& option);

}  // namespace qv5123
