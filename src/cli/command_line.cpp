#include "cli/command_line.h"

#include <algorithm>
#include <exception>
#include <span>
#include <sstream>
#include <utility>
#include <vector>

#include "cli/numbers.h"
#include "cli/report_command.h"
#include "cli/self_description.h"
#include "cli/terminal.h"
#include "link/line_options.h"

namespace qv5123 {
namespace {

constexpr int kLongestTimeout = 3'600'000;

void declare_line(CLI::App& app, LineSettings& line, CLI::Option* port) {
  for (const LineOption& option : kLineOptions) {
    const auto take = [&line, name = option.name](const std::string& text) {
      const std::string fault = take_line_option(name, text, line);
      if (!fault.empty()) refuse(fault);
    };
    app.add_option_function<std::string>("--" + std::string(option.name), take, option.help)
        ->type_name(option.value)
        ->needs(port);
  }
}

void declare_globals(CLI::App& app, Context& context) {
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", "qv5123ctl " QV5123_VERSION, "Print the version and exit");
  GlobalOptions& globals = context.globals;
  const auto take_ports = [&globals](const std::vector<std::string>& ports) {
    globals.ports = ports;
    globals.port = ports.front();
  };
  auto* port = app.add_option_function<std::vector<std::string>>("--port", take_ports,
                                                                 "The serial port that the chip is on");
  port->type_name(kDeviceType)->expected(1)->take_all();
  declare_line(app, globals.line, port);
  app.add_flag("--simulate", globals.simulate, "Work on a simulated chip inside the program")->excludes(port);
  const auto take_timeout = [&globals](const std::string& text) {
    globals.timeout = std::chrono::milliseconds(number_in("--timeout", text, 1, kLongestTimeout));
  };
  app.add_option_function<std::string>("--timeout", take_timeout,
                                       "How long to wait for an answer (default 1800)")
      ->type_name("MS");
  app.add_flag_callback(
      "--json", [&context] { context.out.use_json(true); }, "Print results as JSON");
  add_path(app, "--trace", globals.trace, "Add every byte both ways to this file, time-stamped; - is stderr");
  app.add_flag_callback(
      "--quiet", [&context] { context.out.be_quiet(true); }, "Print results and errors only");
}

/// The command that the words before `unknown` lead to; without such a word, all of them.
const CLI::App& reached(const CLI::App& app, std::span<const char* const> words, const std::string& unknown) {
  const CLI::App* command = &app;
  for (const char* word : words) {
    if (word == unknown) break;
    for (const CLI::App* one : command->get_subcommands())
      if (one->get_name() == word) command = one;
  }
  return *command;
}

/// How many characters are to be put in, left out or changed to make one word of the other.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t corner = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = corner + (a[i] == b[j] ? 0 : 1);
      corner = row[j + 1];
      row[j + 1] = std::min({changed, corner + 1, row[j] + 1});
    }
  }
  return row.back();
}

/// The command that a misspelled one is likely meant to be; nothing where none is near.
std::string meant_by(const std::string& word, const std::vector<const CLI::App*>& commands) {
  constexpr std::size_t kSlips = 2;
  std::string meant;
  std::size_t nearest = std::min(kSlips, word.size() / 2) + 1;
  for (const CLI::App* command : commands) {
    const std::size_t slips = distance(word, command->get_name());
    if (slips >= nearest) continue;
    nearest = slips;
    meant = command->get_name();
  }
  return meant;
}

/// In one line; commands that are missing and misspelled ones are named.
std::string text_of(const CLI::ParseError& error, const CLI::App& app, std::span<const char* const> words) {
  if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::RequiredError)) return error.what();
  const std::vector<std::string> unknown = app.remaining(true);
  const CLI::App& command = reached(app, words, unknown.empty() ? "" : unknown[0]);
  const bool is_group = !subcommands(command).empty();
  // Likelier a slip of the pen than one too many.
  if (!is_group && !unknown.empty()) return "The following argument was not expected: " + unknown[0];
  if (!is_group) return error.what();
  std::string names;
  for (const CLI::App* one : subcommands(command)) names += (names.empty() ? "" : ", ") + one->get_name();
  const std::string what =
      unknown.empty() ? "A command is missing" : "No command is named \"" + unknown[0] + "\"";
  const std::string meant = unknown.empty() ? std::string() : meant_by(unknown[0], subcommands(command));
  return what + "; " + command.get_name() + " has " + names +
         (meant.empty() ? "" : ". Did you mean \"" + meant + "\"?");
}

/// Help and version, which are exceptions of the parser.
ExitCode print_help(Context& context, const CLI::ParseError& error, const CLI::App& app) {
  std::ostringstream text;
  app.exit(error, text, text);
  context.out.print(text.str());
  return ExitCode::done;
}

ExitCode run(Context& context, int argc, const char* const* argv) {
  const std::unique_ptr<CLI::App> app = make_command_line(context);
  try {
    app->parse(argc, argv);
    return context.action ? context.action() : ExitCode::done;
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return print_help(context, error, *app);
    complain(text_of(error, *app, {argv, argv + argc}));
    return ExitCode::bad_input;
  } catch (const Complaint& complaint) {
    context.out.progress("");
    complain(complaint.text);
    return complaint.code;
  } catch (const std::exception& error) {
    // Whatever it is: a script is to have words and an exit code of ours, not an abort.
    context.out.progress("");
    complain(error.what());
    return ExitCode::bad_input;
  }
}

}  // namespace

std::unique_ptr<CLI::App> make_command_line(Context& context) {
  auto app = std::make_unique<CLI::App>(
      "Adjusts and tunes a camera image signal processor over a serial port, without a window.", "qv5123ctl");
  app->get_formatter()->label("SUBCOMMAND", "COMMAND");
  app->require_subcommand(1);
  declare_globals(*app, context);
  add_port_commands(*app, context);
  add_register_commands(*app, context);
  add_form_commands(*app, context);
  add_page_commands(*app, context);
  add_param_commands(*app, context);
  add_settings_commands(*app, context);
  add_download_commands(*app, context);
  add_script_command(*app, context);
  add_replay_command(*app, context);
  add_report_command(*app, context);
  add_monitor_command(*app, context);
  add_flash_commands(*app, context);
  add_font_commands(*app, context);
  add_compute_commands(*app, context);
  add_awb_commands(*app, context);
  add_provision_command(*app, context);
  add_records_commands(*app, context);
  add_self_description(*app, context);
  return app;
}

ExitCode run_command_line(int argc, const char* const* argv) {
  prepare_standard_streams();
  Context context;
  const ExitCode code = run(context, argc, argv);
  return context.out.end(code);
}

}  // namespace qv5123
