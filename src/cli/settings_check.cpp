#include "cli/settings_check.h"

namespace qv5123 {
namespace {

std::string bytes_text(const Setting& setting, const UserDataImage& image) {
  std::string text;
  for (const std::size_t entry : setting.entries)
    text += (text.empty() ? "" : " ") + std::to_string(entry) + "=" + std::to_string(image.entry(entry));
  return text;
}

}  // namespace

std::vector<std::string> value_problems(const SettingsTable& table, const UserDataImage& image) {
  std::vector<std::string> problems;
  for (const Setting& setting : table.settings()) {
    UserDataImage taken = image;
    setting.set(taken, setting.get(image));
    if (taken == image) continue;
    problems.push_back(setting.name + ": " + bytes_text(setting, image) +
                       " is beyond its range, its page would make it " + bytes_text(setting, taken));
  }
  return problems;
}

}  // namespace qv5123
