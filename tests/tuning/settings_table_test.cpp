#include "tuning/settings_table.h"

#include <gtest/gtest.h>

#include <set>

namespace qv5123 {
namespace {

using Entries = std::vector<std::size_t>;

TEST(SettingsTable, HoldsEveryEntryOnceAndEveryNameOnce) {
  const SettingsTable table;
  std::set<std::size_t> entries;
  std::set<std::string> names;
  for (const Setting& setting : table.settings()) {
    EXPECT_TRUE(names.insert(setting.name).second) << setting.name;
    for (const std::size_t entry : setting.entries) EXPECT_TRUE(entries.insert(entry).second) << setting.name;
  }
  EXPECT_EQ(entries.size(), UserDataImage::kSize);
}

TEST(SettingsTable, FindsByNameAndByEntry) {
  const SettingsTable table;
  EXPECT_EQ(table.find("parameter.nr_weight").at(0).entries, Entries{559});
  EXPECT_EQ(table.find("version.isp[2]").at(0).entries, (Entries{705, 706}));
  EXPECT_EQ(table.find("gamma.r").size(), 22u);
  EXPECT_EQ(table.find("1023")[0].entries, Entries{1023});
  EXPECT_TRUE(table.find("1024").empty());
}

}  // namespace
}  // namespace qv5123
