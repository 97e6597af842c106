#include "cli/self_description.h"

namespace qv5123 {
namespace {

/// Text as roff has it: no character of it is a command.
std::string roff(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c == '\n' ? ' ' : c;
    }
  }
  if (escaped.starts_with('.') || escaped.starts_with('\'')) escaped.insert(0, "\\&");
  return escaped;
}

std::string bold(const std::string& text) {
  return "\\fB" + roff(text) + "\\fR";
}
std::string italic(const std::string& text) {
  return "\\fI" + roff(text) + "\\fR";
}

std::string option_head(const CLI::Option& option) {
  std::string head;
  for (const std::string& name : option.get_snames()) head += bold("-" + name) + ", ";
  head += bold(option_name(option));
  if (!option.get_type_name().empty() && option.get_items_expected_max() > 0) {
    head += " " + italic(option.get_type_name());
  }
  return head;
}

std::string item(const std::string& head, const std::string& text) {
  return ".TP\n" + head + "\n" + roff(text) + "\n";
}

std::string items_of(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* argument : arguments(command)) {
    text += item(italic(argument->get_name(true)), argument->get_description());
  }
  for (const CLI::Option* option : options(command)) {
    if (option != command.get_help_ptr()) text += item(option_head(*option), option->get_description());
  }
  return text;
}

std::string usage(const CLI::App& command, const std::string& path) {
  std::string text = bold(path);
  for (const CLI::Option* option : options(command)) {
    if (option == command.get_help_ptr()) continue;
    text += option->get_required() ? " " + option_head(*option) : " [" + option_head(*option) + "]";
  }
  for (const CLI::Option* argument : arguments(command)) {
    const std::string more = argument->get_items_expected_max() > 1 ? "..." : "";
    const std::string name = italic(argument->get_name(true)) + more;
    text += argument->get_required() ? " " + name : " [" + name + "]";
  }
  return text;
}

std::string commands_of(const CLI::App& app, const std::string& path) {
  std::string text;
  for (const CLI::App* command : subcommands(app)) {
    const std::string here = path + command->get_name();
    if (!subcommands(*command).empty()) {
      text += commands_of(*command, here + " ");
      continue;
    }
    text += ".SS " + usage(*command, here) + "\n" + roff(command->get_description()) + ".\n";
    text += items_of(*command);
  }
  return text;
}

}  // namespace

std::string manual_page(const CLI::App& app) {
  const std::string& name = app.get_name();
  return ".TH QV5123CTL 1 \"\" \"QV5123 " QV5123_VERSION "\" \"User Commands\"\n.SH NAME\n" + roff(name) +
         " \\- adjust and tune a camera image signal processor from a shell\n.SH SYNOPSIS\n" + bold(name) +
         " [" + italic("OPTION") + "]... " + italic("COMMAND") + " ...\n.SH DESCRIPTION\n" +
         roff(app.get_description()) +
         "\nNumbers are decimal, or hex behind 0x. Results go to standard output, all else to standard "
         "error.\n"
         ".SH OPTIONS\nThey stand before or behind the command.\n" +
         items_of(app) + item(bold("--help"), "Print help; on every level of commands") + ".SH COMMANDS\n" +
         commands_of(app, "") + ".SH EXIT STATUS\n" + item("0", "Done.") +
         item("1", "The chip did not answer, or the result is negative: differences were found.") +
         item("2", "Wrong usage or input: one line on standard error names it.") +
         item("3", "The port failed.") +
         ".SH EXAMPLES\n.nf\nqv5123ctl \\-\\-port /dev/ttyUSB0 reg read 0xF922\n"
         "qv5123ctl \\-\\-port /dev/ttyUSB0 page save awb \\-\\-from unit.dat \\-\\-verify\n"
         "qv5123ctl \\-\\-simulate \\-\\-json info ae\n.fi\n.SH SEE ALSO\n" +
         bold("qv5123sim") + "(1)\n";
}

}  // namespace qv5123
