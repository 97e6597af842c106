#include "tuning/settings_table.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>

#include "base/text.h"
#include "console/main_commands.h"
#include "console/version_box.h"
#include "tuning/tuning_pages.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {
namespace {

Setting byte_setting(std::string name, std::size_t entry) {
  return {std::move(name),
          {entry},
          [entry](const UserDataImage& image) { return image.entry(entry); },
          [entry](UserDataImage& image, int number) { image.set_entry(entry, number); }};
}

Setting page_setting(const char* page, std::size_t i, const FieldInfo& field) {
  const auto get = [page, i](const UserDataImage& image) {
    const auto model = make_model(page);
    model->load_all(image);
    return model->numbers()[i];
  };
  const auto set = [page, i, limited = field.limited_when_sent](UserDataImage& image, int number) {
    const auto model = make_model(page);
    model->load_all(image);
    // What a file brought is kept as it is, also what nobody could have typed.
    if (limited || model->numbers()[i] != number) model->set_number(i, number);
    model->store_field(i, image);
  };
  return {std::string(page) + "." + field.name, field.entries(), get, set};
}

/// One of the three numbers of a version slot, kept as tens and units.
Setting version_setting(int slot, std::size_t i) {
  constexpr std::array<const char*, kVersionSlots> kSlots{"hw", "sw", "isp"};
  const std::size_t tens = version_entry(slot, i);
  const auto set = [slot, i](UserDataImage& image, int number) {
    VersionNumbers numbers = load_version(image, slot);
    numbers[i] = number;
    store_version(image, slot, numbers);
  };
  return {std::string("version.") + kSlots[static_cast<std::size_t>(slot)] + "[" + std::to_string(i) + "]",
          {tens, tens + 1},
          [slot, i](const UserDataImage& image) { return load_version(image, slot)[i]; },
          set};
}

/// "Pre Nr filter size 0~1" as "pre_nr_filter_size_0_1".
std::string plain_name(std::string_view text) {
  std::string name;
  for (const char c : text) {
    if (std::isalnum(static_cast<unsigned char>(c))) {
      name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    } else if (!name.empty() && name.back() != '_') {
      name += '_';
    }
  }
  if (name.ends_with('_')) name.pop_back();
  return name;
}

void add_pages(std::vector<Setting>& settings) {
  for (const char* page : kTuningPages) {
    const std::vector<FieldInfo>& fields = make_model(page)->fields();
    for (std::size_t i = 0; i < fields.size(); ++i)
      if (fields[i].has_entry()) settings.push_back(page_setting(page, i, fields[i]));
  }
}

void add_unnamed(std::vector<Setting>& settings) {
  std::array<bool, UserDataImage::kSize> named{};
  for (const Setting& setting : settings)
    for (const std::size_t entry : setting.entries) named[entry] = true;
  for (std::size_t entry = 0; entry < named.size(); ++entry)
    if (!named[entry]) settings.push_back(byte_setting(std::to_string(entry), entry));
}

std::string bytes_text(const Setting& setting, const UserDataImage& image) {
  std::string text;
  for (const std::size_t entry : setting.entries)
    text += (text.empty() ? "" : " ") + std::to_string(entry) + "=" + std::to_string(image.entry(entry));
  return text;
}

}  // namespace

SettingsTable::SettingsTable() {
  add_pages(settings_);
  for (const UserdataParameter& parameter : userdata_parameters())
    settings_.push_back(byte_setting("parameter." + plain_name(parameter.name), parameter.entry));
  for (int slot = 0; slot < kVersionSlots; ++slot)
    for (std::size_t i = 0; i < 3; ++i) settings_.push_back(version_setting(slot, i));
  settings_.push_back(byte_setting("osd.pattern", kOsdPatternEntry));
  add_unnamed(settings_);
  std::sort(settings_.begin(), settings_.end(),
            [](const Setting& a, const Setting& b) { return a.entries.front() < b.entries.front(); });
}

std::vector<Setting> SettingsTable::find(std::string_view name) const {
  std::vector<Setting> found;
  if (const auto index = parse_number(name)) {
    const bool exists = *index >= 0 && *index < static_cast<long long>(UserDataImage::kSize);
    if (exists) found.push_back(byte_setting(std::to_string(*index), static_cast<std::size_t>(*index)));
    return found;
  }
  for (const Setting& setting : settings_)
    if (setting.name == name || is_in_group(setting.name, name)) found.push_back(setting);
  return found;
}

bool is_in_group(std::string_view name, std::string_view group) {
  return !group.empty() && name.size() > group.size() && name.starts_with(group) &&
         (name[group.size()] == '.' || name[group.size()] == '[');
}

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
