#include "cli/command_tree.h"

namespace qv5123 {

std::vector<const CLI::App*> subcommands(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> options(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

std::vector<const CLI::Option*> arguments(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::string option_name(const CLI::Option& option) {
  if (!option.get_lnames().empty()) return "--" + option.get_lnames().front();
  return "-" + option.get_snames().front();
}

}  // namespace qv5123
