#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace qv5123 {

/// The manual page of section 1, made of the help of all commands.
std::string manual_page(const CLI::App& app);

/// The completion for bash, made of the same.
std::string bash_completion(const CLI::App& app);

}  // namespace qv5123
