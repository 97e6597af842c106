#include "cli/settings_table.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "cli/tuning_page.h"
#include "simulator/simulated_chip.h"

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

TEST(SettingsTable, FindsWhatThePagesKeepWhere) {
  const SettingsTable table;
  const struct {
    const char* name;
    Entries entries;
  } cases[] = {{"gamma.front[1]", {2, 3}},
               {"gamma.channel", {44}},
               {"gamma.r[5]", {55, 56}},
               {"awb.a_slope", {181, 182}},
               {"awb.f_intercept", {199, 200}},
               {"awb.patch24.b", {284}},
               {"dynamic.light1.weight_b", {207, 208}},
               {"dynamic.cvi.contrast.step5", {844}},
               {"dynamic.outdoor.kind", {376}},
               {"matrix.tvi.outdoor.r[0]", {382, 383}},
               {"matrix.cvbs.light2.b[2]", {687, 688}},
               {"lsc.parameter2.b", {450, 451}},
               {"front.video_mode", {454}},
               {"front.delay", {457, 458}},
               {"front.clamp.gr", {467, 468}},
               {"front.color_suppress", {552}},
               {"parameter.nr_weight", {559}},
               {"osd.pattern", {634}},
               {"version.hw[0]", {689, 690}},
               {"version.isp[2]", {705, 706}}};
  for (const auto& [name, entries] : cases) {
    const std::vector<Setting> found = table.find(name);
    ASSERT_EQ(found.size(), 1u) << name;
    EXPECT_EQ(found[0].entries, entries) << name;
  }
  EXPECT_EQ(table.find("gamma.r").size(), 22u);
  EXPECT_EQ(table.find("dynamic.tvi.iso").size(), 7u);
  EXPECT_EQ(table.find("1023")[0].entries, Entries{1023});
  EXPECT_TRUE(table.find("1024").empty());
  EXPECT_TRUE(table.find("awb.a").empty());
}

TEST(SettingsTable, ASettingChangesItsOwnEntriesOnly) {
  const SettingsTable table;
  UserDataImage image;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i) image.set_entry(i, 0xFF);
  const Setting slope = table.find("awb.b_slope")[0];
  slope.set(image, -12);
  EXPECT_EQ(slope.get(image), -12);
  EXPECT_EQ(image.word(185), 0xFFF4);
  image.set_word(185, 0xFFFF);
  for (const std::uint8_t byte : image.bytes()) EXPECT_EQ(byte, 0xFF);
}

std::string answer_of(SimulatedChip& chip, const Traffic& traffic) {
  for (const Batch& batch : traffic) {
    const std::string bytes = frames(batch);
    chip.receive({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  }
  const std::vector<std::uint8_t> output = chip.take_output();
  const std::string text(output.begin(), output.end());
  const std::size_t start = text.rfind('~') + 1;
  return text.substr(start, text.rfind('^') - start);
}

/// What is saved from a file is what the chip reports, on every page.
TEST(TuningPage, WhatIsSavedIsWhatIsReadBack) {
  std::mt19937 random(5);
  for (const char* name : kTuningPages) {
    const auto page = make_tuning_page(name);
    UserDataImage image;
    // Every value set to something that its page takes.
    for (std::size_t i = 0; i < page->values().size(); ++i) {
      if (!page->values()[i].entries.empty()) page->store(i, static_cast<int>(random() % 8), image);
    }
    SimulatedChip chip;
    const TuningPage::Save save = page->save(image);
    answer_of(chip, save.traffic);
    const auto reported = page->from_reply(answer_of(chip, {page->request()}));
    ASSERT_TRUE(reported) << name;
    std::size_t compared = 0;
    for (std::size_t i = 0; i < page->values().size(); ++i) {
      const TuningPage::Value& value = page->values()[i];
      if (!value.in_reply || !value.in_save || value.entries.empty()) continue;
      ++compared;
      EXPECT_EQ((*reported)[i], save.numbers[i]) << value.name;
    }
    EXPECT_GE(compared, 6u) << name;
    EXPECT_FALSE(page->from_reply("00")) << name;
  }
}

}  // namespace
}  // namespace qv5123
