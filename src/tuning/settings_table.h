#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"

namespace qv5123 {

/// One setting of a user data image by name, with the entries that hold it.
struct Setting {
  std::string name;
  std::vector<std::size_t> entries;
  std::function<int(const UserDataImage&)> get;
  /// Limits the number as its page does.
  std::function<void(UserDataImage&, int)> set;
};

/// All 1024 entries as settings: the pages' values ("awb.a_slope"), "osd.pattern", "version.hw[0]", the
/// parameters of the service area ("parameter.nr_weight"), and every entry that nobody names by its index.
class SettingsTable {
 public:
  SettingsTable();

  /// In the order of their first entries; every entry is in exactly one of them.
  const std::vector<Setting>& settings() const { return settings_; }

  /// The setting of that name, the entry of that index ("181" or "0xB5", alone, as a byte), or all settings
  /// whose names begin with it and a point or bracket ("awb", "gamma.r"). Empty when there is none.
  std::vector<Setting> find(std::string_view name) const;

 private:
  std::vector<Setting> settings_;
};

/// Whether `name` is one of a group, such as "awb.clamp.g" of "awb", or "gamma.r[5]" of "gamma.r".
bool is_in_group(std::string_view name, std::string_view group);

/// Where the pages would not show what the image holds, because it lies beyond what they take.
std::vector<std::string> value_problems(const SettingsTable& table, const UserDataImage& image);

}  // namespace qv5123
