#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "cli/command.h"
#include "cli/self_description.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

bool takes_value(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

void add_paths(const CLI::App& app, const std::string& path, std::vector<std::string>& paths) {
  for (const CLI::App* command : subcommands(app)) {
    paths.push_back(path + command->get_name());
    add_paths(*command, paths.back() + " ", paths);
  }
}

/// The words after a command, and whether files are among them.
std::string case_of(const CLI::App& app, const std::string& path) {
  std::vector<std::string> words;
  for (const CLI::App* command : subcommands(app)) words.push_back(command->get_name());
  for (const CLI::Option* option : options(app)) {
    // The global ones are offered everywhere.
    if (!path.empty() && option != app.get_help_ptr()) words.push_back(option_name(*option));
  }
  bool files = false;
  for (const CLI::Option* argument : arguments(app)) files = files || argument->get_type_name() == kFileType;
  // The pages are the only arguments with a fixed set of words.
  if (path.starts_with("page ")) {
    words.insert(words.end(), std::begin(kTuningPages), std::end(kTuningPages));
    words.emplace_back("all");
  }
  std::string text =
      "    \"" + path + "\") words=\"" + joined(words, " ") + "\"" + (files ? " files=yes" : "") + " ;;\n";
  for (const CLI::App* command : subcommands(app)) {
    text += case_of(*command, path.empty() ? command->get_name() : path + " " + command->get_name());
  }
  return text;
}

/// Options, by what follows them.
void collect(const CLI::App& app, std::vector<std::string>& files, std::vector<std::string>& others) {
  for (const CLI::Option* option : options(app)) {
    if (!takes_value(*option) || option->get_type_name() == kDeviceType) continue;
    auto& names = option->get_type_name() == kFileType ? files : others;
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    names.push_back(option_name(*option));
  }
  for (const CLI::App* command : subcommands(app)) collect(*command, files, others);
}

std::string alternatives(std::vector<std::string> words) {
  std::sort(words.begin(), words.end());
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return joined(words, "|");
}

}  // namespace

std::string bash_completion(const CLI::App& app) {
  std::vector<std::string> paths, files, others;
  add_paths(app, "", paths);
  collect(app, files, others);
  std::string quoted;
  for (const std::string& path : paths) quoted += (quoted.empty() ? "\"" : "|\"") + path + "\"";
  std::string globals;
  for (const CLI::Option* option : options(app)) globals += " " + option_name(*option);
  return "# bash completion for qv5123ctl; made by \"qv5123ctl bash-completion\".\n"
         "_qv5123ctl() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local path=\"\" word words=\"\" files=\"\"\n"
         "  COMPREPLY=()\n"
         "  case \"$previous\" in\n"
         "    --port)\n"
         "      COMPREPLY=($(compgen -W \"$(\"$1\" ports 2>/dev/null | cut -d' ' -f1)\" -- \"$current\"))\n"
         "      return ;;\n"
         "    " +
         alternatives(files) +
         ")\n"
         "      compopt -o filenames 2>/dev/null\n"
         "      mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
         "      return ;;\n"
         "    " +
         alternatives(others) +
         ") return ;;\n"
         "  esac\n"
         "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
         "    case \"${path:+$path }$word\" in\n"
         "      " +
         quoted +
         ")\n"
         "        path=\"${path:+$path }$word\" ;;\n"
         "    esac\n"
         "  done\n"
         "  case \"$path\" in\n" +
         case_of(app, "") +
         "  esac\n"
         "  COMPREPLY=($(compgen -W \"$words" +
         globals +
         "\" -- \"$current\"))\n"
         "  if [ -n \"$files\" ]; then\n"
         "    compopt -o filenames 2>/dev/null\n"
         "    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- \"$current\")\n"
         "  fi\n"
         "}\n"
         "complete -F _qv5123ctl qv5123ctl\n";
}

}  // namespace qv5123
