#include "tuning/settings_table.h"

#include <gtest/gtest.h>

#include <map>
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

TEST(SettingsTable, FindsWhatThePagesKeepWhere) {
  const SettingsTable table;
  const std::map<const char*, Entries> cases = {{"front.video_mode", {454}},
                                                {"front.delay", {457, 458}},
                                                {"front.tdn_mode", {462}},
                                                {"front.ir_on_off", {464}},
                                                {"front.clamp.gb", {469, 470}},
                                                {"front.led_dimmer", {582}},
                                                {"front.color_suppress", {552}},
                                                {"gamma.r[5]", {55, 56}},
                                                {"dynamic.light1.weight_b", {207, 208}},
                                                {"dynamic.further_ae", {290}},
                                                {"dynamic.tvi.bright.offset", {299}},
                                                {"dynamic.ir_led.nr.step5", {361}},
                                                {"dynamic.outdoor.value", {377}},
                                                {"dynamic.light2.saturation", {438}},
                                                {"dynamic.hue_angle", {439}},
                                                {"dynamic.ahd.iso.step0", {708}},
                                                {"awb.a_intercept", {183, 184}},
                                                {"awb.d_slope", {193, 194}},
                                                {"awb.e_intercept", {197, 198}},
                                                {"awb.patch2.g", {217}},
                                                {"awb.patch24.b", {284}},
                                                {"dynamic.cvi.contrast.step5", {844}},
                                                {"matrix.cvbs.light2.b[2]", {687, 688}},
                                                {"lsc.parameter2.b", {450, 451}},
                                                {"parameter.nr_weight", {559}},
                                                {"version.isp[2]", {705, 706}}};
  for (const auto& [name, entries] : cases) {
    const std::vector<Setting> found = table.find(name);
    ASSERT_EQ(found.size(), 1u) << name;
    EXPECT_EQ(found[0].entries, entries) << name;
  }
  EXPECT_EQ(table.find("gamma.r").size(), 22u);
  EXPECT_EQ(table.find("1023")[0].entries, Entries{1023});
  EXPECT_TRUE(table.find("1024").empty());
}

}  // namespace
}  // namespace qv5123
