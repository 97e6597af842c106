// All values of the tuning pages, compared as a whole with a list that was written apart from their layouts.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>

#include "base/hex.h"
#include "support/source_folder.h"
#include "tuning/page_model.h"
#include "tuning/settings_table.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

/// "lsc.parameter1.r 440,441 0x64 0..4095 Parameter-1 RED": name, entries, register, range and caption.
std::string line_of(const std::string& page, const FieldInfo& field) {
  std::string entries;
  for (const std::size_t entry : field.entries())
    entries += (entries.empty() ? "" : ",") + std::to_string(entry);
  const std::string address =
      field.address == Field::kNowhere ? "-" : "0x" + upper_hex(static_cast<unsigned>(field.address));
  return page + "." + field.name + " " + (entries.empty() ? "-" : entries) + " " + address + " " +
         std::to_string(field.range.lowest) + ".." + std::to_string(field.range.highest) + " " +
         field.caption.caption() + "\n";
}

TEST(Fields, AreNamedStoredAndAddressedAsListed) {
  std::ifstream file(test::source_folder() / "tests/tuning/fields.txt");
  const std::string listed(std::istreambuf_iterator<char>(file), {});
  std::string all;
  for (const char* page : kTuningPages) {
    const std::unique_ptr<TuningModel> model = make_model(page);
    for (const FieldInfo& field : model->fields()) all += line_of(page, field);
  }
  EXPECT_EQ(all, listed);
}

using Entries = std::vector<std::size_t>;

TEST(SettingsTable, HoldsEveryEntryOnceAndFindsByNameAndByEntry) {
  const SettingsTable table;
  std::set<std::size_t> entries;
  std::set<std::string> names;
  for (const Setting& setting : table.settings()) {
    EXPECT_TRUE(names.insert(setting.name).second) << setting.name;
    for (const std::size_t entry : setting.entries) EXPECT_TRUE(entries.insert(entry).second) << setting.name;
  }
  EXPECT_EQ(entries.size(), UserDataImage::kSize);
  EXPECT_EQ(table.find("parameter.nr_weight").at(0).entries, Entries{559});
  EXPECT_EQ(table.find("version.isp[2]").at(0).entries, (Entries{705, 706}));
  EXPECT_EQ(table.find("gamma.r").size(), 22u);
  EXPECT_EQ(table.find("1023")[0].entries, Entries{1023});
  EXPECT_TRUE(table.find("1024").empty());
}

}  // namespace
}  // namespace qv5123
