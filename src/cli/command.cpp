#include "cli/command.h"

#include "cli/numbers.h"

namespace qv5123 {
namespace {

/// The name as complaints give it: an option's "--ratio", an argument's "ADDR".
std::string shown_name(const std::string& name) {
  const std::size_t comma = name.find(',');
  return comma == std::string::npos ? name : name.substr(comma + 1);
}

std::filesystem::path path_of(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

}  // namespace

CLI::Option* add_path(CLI::App& command, const std::string& name, std::filesystem::path& path,
                      const std::string& help) {
  const auto take = [&path, shown = shown_name(name)](const std::string& text) {
    if (text.empty()) refuse(shown + " is empty");
    path = path_of(text);
  };
  return command.add_option_function<std::string>(name, take, help)->type_name(kFileType);
}

CLI::Option* add_numbers(CLI::App& command, const std::string& name, std::vector<int>& numbers, int lowest,
                         int highest, const std::string& help) {
  const auto take = [&numbers, name, lowest, highest](const std::vector<std::string>& texts) {
    numbers.clear();
    for (const std::string& text : texts) numbers.push_back(number_in(name, text, lowest, highest));
  };
  return command.add_option_function<std::vector<std::string>>(name, take, help)->type_name("");
}

CLI::Option* add_number(CLI::App& command, const std::string& name, int& number, int lowest, int highest,
                        const std::string& help) {
  const auto take = [&number, shown = shown_name(name), lowest, highest](const std::string& text) {
    number = number_in(shown, text, lowest, highest);
  };
  return command.add_option_function<std::string>(name, take, help)->type_name(name[0] == '-' ? "N" : "");
}

CLI::Option* add_lenient(CLI::App& command, bool& lenient) {
  return command.add_flag("--lenient", lenient,
                          "Take a setting file that is not 1024 decimal numbers, as the window does");
}

CLI::Option* add_real(CLI::App& command, const std::string& name, double& number, const std::string& help) {
  const auto take = [&number, name](const std::string& text) { number = real_number(name, text); };
  return command.add_option_function<std::string>(name, take, help)->type_name("X");
}

}  // namespace qv5123
