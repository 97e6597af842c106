#pragma once

#include <CLI/CLI.hpp>

#include "cli/context.h"

namespace qv5123 {

void add_report_command(CLI::App& app, Context& context);

}  // namespace qv5123
