#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/context.h"

namespace qv5123 {

/// Type names of options, which also tell the completion what to offer.
inline constexpr const char* kFileType = "FILE";
inline constexpr const char* kDeviceType = "DEVICE";

/// A command that only holds others.
inline CLI::App* add_group(CLI::App& parent, const std::string& name, const std::string& help) {
  CLI::App* group = parent.add_subcommand(name, help);
  group->require_subcommand(1)->fallthrough()->group("Commands");
  return group;
}

/// A command. `run` gets the options that `declare` put on it.
template <class Options>
CLI::App* add_command(CLI::App& parent, Context& context, const std::string& name, const std::string& help,
                      void (*declare)(CLI::App&, Options&), ExitCode (*run)(Context&, const Options&)) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = parent.add_subcommand(name, help);
  command->fallthrough()->group("Commands");
  declare(*command, *options);
  command->callback([&context, options, run] {
    context.action = [&context, options, run] { return run(context, *options); };
  });
  return command;
}

/// An argument or option that is a path.
CLI::Option* add_path(CLI::App& command, const std::string& name, std::filesystem::path& path,
                      const std::string& help);
/// Arguments that are numbers, 0x hex or decimal, each within the range.
CLI::Option* add_numbers(CLI::App& command, const std::string& name, std::vector<int>& numbers, int lowest,
                         int highest, const std::string& help);
CLI::Option* add_number(CLI::App& command, const std::string& name, int& number, int lowest, int highest,
                        const std::string& help);
/// For commands that refuse a setting file which is not 1024 decimal numbers.
CLI::Option* add_lenient(CLI::App& command, bool& lenient);
CLI::Option* add_real(CLI::App& command, const std::string& name, double& number, const std::string& help);

// The groups of commands.
void add_port_commands(CLI::App& app, Context& context);
void add_register_commands(CLI::App& app, Context& context);
void add_register_file_commands(CLI::App& reg, Context& context);
void add_register_check(CLI::App& reg, Context& context);
void add_form_commands(CLI::App& app, Context& context);
void add_page_commands(CLI::App& app, Context& context);
void add_awb_commands(CLI::App& app, Context& context);
void add_provision_command(CLI::App& app, Context& context);
void add_records_commands(CLI::App& app, Context& context);
void add_matrix_measure(CLI::App& matrix, Context& context);
void add_lens_measure(CLI::App& lens, Context& context);
void add_settings_commands(CLI::App& app, Context& context);
void add_settings_read(CLI::App& settings, Context& context);
void add_download_commands(CLI::App& app, Context& context);
void add_param_commands(CLI::App& app, Context& context);
void add_replay_command(CLI::App& app, Context& context);
void add_script_command(CLI::App& app, Context& context);
void add_monitor_command(CLI::App& app, Context& context);
void add_flash_commands(CLI::App& app, Context& context);
void add_font_commands(CLI::App& app, Context& context);
void add_compute_commands(CLI::App& app, Context& context);
/// Hidden ones that print the manual page and the shell completion.
void add_self_description(CLI::App& app, Context& context);

}  // namespace qv5123
