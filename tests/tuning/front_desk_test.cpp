#include "tuning/front_desk.h"

#include <gtest/gtest.h>

#include <map>

#include "support/desk_bench.h"
#include "support/desk_fields.h"

namespace qv5123 {
namespace {

using C = FrontControl;

// 2M PAL C, RGGB, External, "+"; clamps 0x0123, 0x0234, 0x0345, 0xFFFF; Gamma, Sharpness, HUE, DPC, Raw Data;
// Color Suppress, dimmer 200, WDR Auto.
const std::string kReply = std::string("04020301") + "012302340345ffff" + "080011200880c802";

class FrontDeskTest : public test::DeskBench {
 protected:
  void load() {
    load_desk(desk_, kReply);
    wire();
  }
  void set(const char* name, int number) { desk_.model().set_number(test::field_place(desk_, name), number); }
  std::map<std::string, int> values() const {
    std::map<std::string, int> values;
    const std::vector<int> numbers = desk_.model().numbers();
    for (std::size_t i = 0; i < numbers.size(); ++i) values[desk_.model().fields()[i].name] = numbers[i];
    return values;
  }

  UserDataImage& image_ = host_.doc.user_data;
  FrontDesk desk_{host_, image_};
};

TEST_F(FrontDeskTest, TakesTheReply) {
  set("delay", 77);
  load();
  EXPECT_EQ(
      values(),
      (std::map<std::string, int>{
          {"video_mode", 4},        {"colour_order", 2},    {"tdn_mode", 2},      {"delay", 77},
          {"ir_on_off", 0},         {"led_dimmer", 200},    {"polarity", 1},      {"clamp.r", 0x123},
          {"clamp.gr", 0x234},      {"clamp.gb", 0x345},    {"clamp.b", 0xFFFF},  {"wdr_state", 2},
          {"flag.test_pattern", 0}, {"flag.raw_data", 1},   {"flag.gamma", 1},    {"flag.brightness", 0},
          {"flag.sharpness", 1},    {"flag.saturation", 0}, {"flag.hue", 1},      {"flag.dpc", 1},
          {"flag.ae_task", 1},      {"flag.awb_task", 1},   {"color_suppress", 1}}));
  EXPECT_TRUE(host_.statuses.empty());
  desk_.start_load();
  EXPECT_EQ(wire(2000), "@be00*");
  EXPECT_EQ(host_.last_status(), "ISP Load Fail...");
}

TEST_F(FrontDeskTest, FullSaveWritesTheFileAndSends) {
  load();
  set("delay", 7);
  set("ir_on_off", 9);
  EXPECT_EQ(desk_.unread(), "Delay, IR On/Off: not read yet") << "the chip does not report them";
  desk_.start_save(host_.user, desk_.save(host_));
  EXPECT_EQ(wire(), "");
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_EQ(host_.user.questions[0].preferred, Answer::no);
  EXPECT_EQ(host_.user_data_writes, 0);
  host_.user.answers = {Answer::yes};
  desk_.start_save(host_.user, desk_.save(host_));
  EXPECT_EQ(wire(),
            "@fa01*@6f02*@6e04*@7003*@7107*@7409*@8dc8*@aa01*@7801*@7823*@7902*@7934*@7a03*@7a45*@7bff*@7bff*"
            "@8902*@fa00*");
  const std::map<std::size_t, int> stored{
      {454, 4},    {456, 2}, {457, 7},    {458, 7},   {462, 3},   {464, 9}, {465, 1}, {466, 0x23}, {467, 2},
      {468, 0x34}, {469, 3}, {470, 0x45}, {471, 255}, {472, 255}, {549, 2}, {551, 1}, {582, 200}};
  UserDataImage expected;
  for (const auto& [entry, value] : stored) expected.set_entry(entry, value);
  EXPECT_EQ(host_.written.bytes(), expected.bytes()) << "the dimmer is not limited, Color Suppress not kept";
  EXPECT_EQ(host_.statuses, std::vector<std::string>{"ISP Data Save Done."});
  host_.write_succeeds = false;
  desk_.start_save(host_.user, desk_.save(host_));
  EXPECT_EQ(wire().size(), 18u * 6) << "the chip gets the settings all the same";
  EXPECT_EQ(host_.user.questions.size(), 2u) << "it is asked until the answer is Yes, and once then";
  EXPECT_EQ(host_.last_status(), "Only the chip was saved: no setting file was written.");
}

TEST_F(FrontDeskTest, FollowsALoadedFileSoFarAsTheChipDoesNotReport) {
  const auto load_file = [this](int delay, int ir, int dimmer) {
    image_.set_entry(457, delay);
    image_.set_entry(464, ir);
    image_.set_entry(582, dimmer);
    image_.mark_loaded();
  };
  load_file(7, 9, 33);
  FrontDesk opened(host_, image_);
  EXPECT_EQ(opened.values().delay, 7) << "loaded before the page was opened";
  EXPECT_EQ(opened.values().led_dimmer, 33);
  desk_.follow_file();
  EXPECT_EQ(desk_.values().led_dimmer, 33) << "the chip has not answered yet";
  load();
  load_file(17, 19, 34);
  desk_.follow_file();
  EXPECT_EQ(desk_.values().led_dimmer, 200) << "which the chip has reported";
  desk_.start_save(host_.user, desk_.save(host_));
  EXPECT_TRUE(wire().find("@7111*@7413*") != std::string::npos);
  EXPECT_EQ(host_.written.entry(458), 17);
}

}  // namespace
}  // namespace qv5123
