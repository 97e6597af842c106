#include "cli/self_description.h"

#include "cli/command.h"

namespace qv5123 {
namespace {

/// The whole tree, of which the command's own parent is the root.
template <std::string (*describe)(const CLI::App&)>
void add_hidden(CLI::App& app, Context& context, const std::string& name, const std::string& help) {
  CLI::App* command = app.add_subcommand(name, help)->group("");
  command->callback([&app, &context] {
    context.action = [&app, &context] {
      context.out.result(describe(app), describe(app));
      return ExitCode::done;
    };
  });
}

}  // namespace

void add_self_description(CLI::App& app, Context& context) {
  add_hidden<manual_page>(app, context, "man", "Print the manual page");
  add_hidden<bash_completion>(app, context, "bash-completion", "Print the completion for bash");
}

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
