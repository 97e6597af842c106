#include <utility>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/numbers.h"
#include "cli/parameters.h"
#include "console/setting_file.h"
#include "console/setting_format.h"
#include "tuning/settings_table.h"

namespace qv5123 {
namespace {

struct SettingsOptions {
  std::filesystem::path file;
  std::filesystem::path other;
  std::vector<std::string> names;
  bool lenient = false;
};

std::vector<Setting> wanted(const SettingsTable& table, const std::vector<std::string>& names) {
  if (names.empty()) return table.settings();
  std::vector<Setting> settings;
  for (const std::string& name : names) {
    std::vector<Setting> found = table.find(name);
    if (found.empty()) refuse("No setting is named \"" + name + "\"");
    for (Setting& setting : found) settings.push_back(std::move(setting));
  }
  return settings;
}

ExitCode show(Context& context, const SettingsOptions& options) {
  const UserDataImage image = read_settings(context.out, options.file);
  Json values = Json::object();
  std::string text;
  for (const Setting& setting : wanted(SettingsTable(), options.names)) {
    const int value = setting.get(image);
    values[setting.name] = value;
    text += setting.name + " = " + std::to_string(value) + "\n";
  }
  Json json = {{"file", path_text(options.file)}};
  // Without a choice the file as it is, too.
  if (options.names.empty()) json["entries"] = image.bytes();
  json["values"] = values;
  context.out.result(json, text);
  return ExitCode::done;
}

/// Whether a page shows it and no file has a place for it.
bool is_on_chip_only(const std::string& name) {
  for (const PageParameters& page : all_parameters())
    for (const std::size_t i : page.fields)
      if (page.name(i) == name) return !page.field(i).has_entry();
  return false;
}

/// "NAME=VALUE" put into the image. False, and said, where no file holds it: what "page show" prints can be
/// given as it is.
bool assign(Output& out, const SettingsTable& table, const std::string& text, UserDataImage& image) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) refuse("\"" + text + "\" is not of the form NAME=VALUE");
  const std::string name = text.substr(0, equals);
  // First, since it may be the beginning of other names, too.
  if (is_on_chip_only(name)) {
    out.warning(name + ": no setting file holds it, left out");
    return false;
  }
  const std::vector<Setting> found = table.find(name);
  if (found.empty()) refuse("No setting is named \"" + name + "\"");
  if (found.size() > 1) refuse("\"" + name + "\" stands for " + std::to_string(found.size()) + " settings");
  const int number = number_in(name, text.substr(equals + 1), -0x8000, 0xFFFF);
  found.front().set(image, number);
  const int stored = found.front().get(image);
  if (stored != number) {
    refuse(name + ": " + text.substr(equals + 1) + " is beyond its range, it would count as " +
           std::to_string(stored));
  }
  return true;
}

ExitCode set(Context& context, const SettingsOptions& options) {
  const SettingsTable table;
  const FileLock lock = lock_for_change(options.file);
  UserDataImage image = read_whole_settings(options.file, options.lenient);
  std::size_t assigned = 0;
  for (const std::string& assignment : options.names)
    assigned += assign(context.out, table, assignment, image) ? 1 : 0;
  write_file(options.file, setting_text(image));
  context.out.result(Json{{"file", path_text(options.file)}, {"set", assigned}});
  return ExitCode::done;
}

std::vector<std::size_t> differing(const Setting& setting, const UserDataImage& a, const UserDataImage& b) {
  std::vector<std::size_t> entries;
  for (const std::size_t entry : setting.entries)
    if (a.entry(entry) != b.entry(entry)) entries.push_back(entry);
  return entries;
}

/// The numbers of a setting in both images, or of its bytes where a page would show no difference.
void add_difference(const Setting& setting, const UserDataImage& a, const UserDataImage& b, Json& json,
                    std::string& text) {
  const auto add = [&](const std::string& name, const std::vector<std::size_t>& entries, int one, int other) {
    json.push_back({{"name", name}, {"entries", entries}, {"a", one}, {"b", other}});
    text += name + ": " + std::to_string(one) + " -> " + std::to_string(other) + "\n";
  };
  const std::vector<std::size_t> entries = differing(setting, a, b);
  const int one = setting.get(a);
  const int other = setting.get(b);
  if (one != other) return add(setting.name, entries, one, other);
  for (const std::size_t entry : entries) {
    add(std::to_string(entry), {entry}, a.entry(entry), b.entry(entry));
  }
}

ExitCode diff(Context& context, const SettingsOptions& options) {
  const UserDataImage a = read_settings(context.out, options.file);
  const UserDataImage b = read_settings(context.out, options.other);
  const SettingsTable table;
  Json json = Json::array();
  std::string text;
  for (const Setting& setting : table.settings()) {
    if (!differing(setting, a, b).empty()) add_difference(setting, a, b, json, text);
  }
  context.out.result({{"differences", json}}, text);
  return json.empty() ? ExitCode::done : ExitCode::negative;
}

ExitCode check(Context& context, const SettingsOptions& options) {
  const std::string written = read_file(options.file, kSettingFileLimit);
  std::vector<std::string> problems = format_problems(written);
  if (holds_settings(written)) {
    const std::vector<std::string> more = value_problems(SettingsTable(), image_of(written));
    problems.insert(problems.end(), more.begin(), more.end());
  }
  std::string text;
  for (const std::string& problem : problems) text += path_text(options.file) + ": " + problem + "\n";
  context.out.result({{"ok", problems.empty()}, {"problems", problems}}, text);
  if (problems.empty()) context.out.remark(path_text(options.file) + ": ok\n");
  return problems.empty() ? ExitCode::done : ExitCode::negative;
}

void declare_file(CLI::App& command, SettingsOptions& options) {
  add_path(command, "FILE", options.file, "A setting file")->required();
}

void declare_show(CLI::App& command, SettingsOptions& options) {
  declare_file(command, options);
  command.add_option("NAME", options.names, "Names, beginnings of names, or indexes; without, all")
      ->type_name("");
}

void declare_set(CLI::App& command, SettingsOptions& options) {
  declare_file(command, options);
  command.add_option("NAME=VALUE", options.names, "Name or index, and a number")->type_name("")->required();
  add_lenient(command, options.lenient);
}

void declare_diff(CLI::App& command, SettingsOptions& options) {
  add_path(command, "A", options.file, "A setting file")->required();
  add_path(command, "B", options.other, "Another one")->required();
}

}  // namespace

void add_settings_commands(CLI::App& app, Context& context) {
  CLI::App* settings = add_group(app, "settings", "Setting files, by name and by index");
  add_command<SettingsOptions>(*settings, context, "show", "Print settings", declare_show, show);
  add_command<SettingsOptions>(*settings, context, "set", "Change settings in a file", declare_set, set);
  add_command<SettingsOptions>(*settings, context, "diff", "Print what differs between two files",
                               declare_diff, diff);
  add_command<SettingsOptions>(*settings, context, "check",
                               "Check that a file is whole and within what the pages take", declare_file,
                               check);
  add_settings_read(*settings, context);
}

}  // namespace qv5123
