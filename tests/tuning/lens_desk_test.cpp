#include "tuning/lens_desk.h"

#include "support/desk_bench.h"
#include "support/lens_chip.h"

namespace qv5123 {
namespace {

constexpr char kSwitchedOff[] = "@a001*@a101*";

/// The page's log.
class Log : public LensDesk::View {
 public:
  std::string text;
  void add_to_log(const std::string& more) override { text += more; }
  void clear_log() override { text.clear(); }
};

class LensDeskTest : public test::DeskBench {
 protected:
  LensDeskTest() { desk_.attach(log_); }
  void start_calibration(int dark_at = -1) {
    test::answer_lens_reads(fake_, dark_at);
    // The readings are whole counts: Parameter-2 comes out a little below 0, which is asked about.
    host_.user.answers = {Answer::yes};
    switched(desk_, true);
    desk_.start_calibration(host_.user);
  }
  void type(std::size_t parameter, int number) { desk_.model().set_number(parameter, number); }
  std::vector<int> parameters() const { return desk_.model().numbers(); }

  LensDesk desk_{host_, host_.doc.user_data};
  Log log_;
};

TEST_F(LensDeskTest, SwitchesThePickerAndMovesIt) {
  test::answer_lens_reads(fake_);
  EXPECT_EQ(switched(desk_, true),
            "@940a*@9429*@940a*@9410*@920a*@9210*@9300*@920a*@9220*@9380*@920a*@9229*@9390*@a000*@a100*"
            "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*@93c0*");
  EXPECT_EQ(host_.last_status(),
            "Start color capture. Please click direction button to move cursor on screen.");
  desk_.picker().want_keys(true);
  desk_.picker().choose_step(7);
  desk_.picker().move(PickerMove::left);
  desk_.picker().type_y(10);
  desk_.picker().move(PickerMove::up);
  EXPECT_EQ(wire(),
            "@920c*@9238*@9303*@920c*@9239*@9340*@920c*@923a*@9300*@920c*@923b*@930a*"
            "@920c*@923a*@9300*@920c*@923b*@9300*")
      << "what was typed leaves as well";
  EXPECT_TRUE(switched(desk_, false).ends_with("@920a*@9220*@9390*@920a*@9229*@9310*@a001*@a101*"));
  EXPECT_EQ(host_.last_status(), "End color capture.");
}

TEST_F(LensDeskTest, CalibratesSendsAndSwitchesOff) {
  start_calibration();
  const std::string sent = wire(70'000);
  EXPECT_TRUE(log_.text.starts_with("X pos: 16 \tR=216\tG=180\tB=144\r\nX pos: 272 \t")) << log_.text;
  EXPECT_NE(log_.text.find("Center horizontal pos: 9"), std::string::npos);
  EXPECT_NEAR(parameters()[0], 512, 60);
  EXPECT_FALSE(desk_.picker().on());
  EXPECT_EQ(host_.busy, (std::vector<bool>{true, false, true, false})) << "the switch, then the sweep";
  EXPECT_TRUE(sent.ends_with(kSwitchedOff));
  EXPECT_NE(sent.find("@6401*"), std::string::npos);

  const std::vector<int> all = parameters();
  for (const int ratio : {0, 100}) desk_.move_ratio(ratio);
  EXPECT_EQ(parameters(), all);
}

TEST_F(LensDeskTest, TheRatioCountsUntilThePickerIsOff) {
  start_calibration();
  for (int i = 0; i < 7000 && (host_.progress.empty() || host_.progress.back() != 100); ++i)
    fake_.advance(10);
  fake_.advance(300);  // the parameters have left
  desk_.move_ratio(0);
  const std::string sent = wire(3000);
  EXPECT_NE(sent.find("@6401*"), std::string::npos);
  EXPECT_EQ(parameters(), std::vector<int>(6, 0));
  EXPECT_TRUE(
      sent.ends_with("@a101*@6400*@6400*@6400*@6400*@6400*@6400*"
                     "@6500*@6500*@6500*@6500*@6500*@6500*"));
  EXPECT_TRUE(host_.user.messages.empty());
}

TEST_F(LensDeskTest, SwitchingOffAbortsAndKeepsTheParameters) {
  type(0, 77);
  start_calibration();
  fake_.advance(10'000);
  fake_.sender.chip = nullptr;  // the reading under way fails
  desk_.picker().click_switch(false);
  fake_.advance(60);
  test::answer_lens_reads(fake_);
  const std::string sent = wire(5000);
  EXPECT_TRUE(host_.user.messages.empty()) << "no complaint about what was switched off";
  EXPECT_EQ(parameters(), (std::vector<int>{77, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(sent.ends_with(kSwitchedOff));
  EXPECT_EQ(sent.find("@64"), std::string::npos);
  EXPECT_EQ(host_.busy.back(), false);
}

TEST_F(LensDeskTest, AReadingThatIsZeroStopsWithItsPlace) {
  start_calibration(528);
  const std::string sent = wire(10'000);
  EXPECT_FALSE(desk_.picker().on());
  EXPECT_FALSE(desk_.picker().keys_enabled());
  EXPECT_EQ(host_.user.messages.at(0).text, "Calibration stopped: green reads 0 at X pos 528.");
  EXPECT_EQ(sent.find("@64"), std::string::npos);
}

TEST_F(LensDeskTest, WhatAChipSaysThatWasAwayIsNoReading) {
  start_calibration();
  fake_.advance(10'000);
  fake_.link.connection_changed();
  fake_.advance(2000);
  EXPECT_TRUE(host_.user.messages.at(0).text.starts_with("Calibration stopped: the connection was lost at "));
  switched(desk_, true);
  fake_.link.connection_changed();
  desk_.start_calibration(host_.user);
  EXPECT_EQ(wire(), "");
  EXPECT_TRUE(host_.user.messages.at(1).text.ends_with(kPickerChipWasAway));
}

TEST_F(LensDeskTest, LoadsFromTheChipAndFlickerModesExcludeEachOther) {
  load_desk(desk_, "ffff02030405060708090aFFff");
  EXPECT_EQ(wire(), "@6b00*");
  EXPECT_EQ(host_.last_status(), "Load Isp ok");
  EXPECT_EQ(parameters(), (std::vector<int>{4095, 0x203, 0x405, 0x607, 0x809, 0xAFF}));
  desk_.click_ntsc();
  desk_.click_pal();
  desk_.click_pal();
  EXPECT_EQ(wire(), "@bd02*@bd01*@bd00*");
}

TEST_F(LensDeskTest, SavesToFileAndChipAndComesBack) {
  for (int i = 0; i < 6; ++i) type(i, 0x101 * (i + 1));
  desk_.send_row(LensControl::parameter1);
  desk_.send_row(LensControl::parameter2);
  EXPECT_EQ(desk_.unread(), "not read yet");
  host_.user.answers = {Answer::yes};
  desk_.start_save(host_.user, desk_.save(host_));
  fake_.advance(2000);
  EXPECT_EQ(fake_.sender.writes,
            (std::vector<std::string>{"@6401*@6401*@6402*@6402*@6403*@6403*",
                                      "@6504*@6504*@6505*@6505*@6506*@6506*", "@f901*", "@fa01*",
                                      "@6401*@6401*", "@6402*@6402*", "@6403*@6403*", "@6504*@6504*",
                                      "@6505*@6505*", "@6506*@6506*", "@fa00*", "@f900*"}));
  EXPECT_EQ(host_.last_status(), "File save done");
  desk_.model().store(image());
  EXPECT_EQ(image().word(450), 0x606);
  type(5, 1);
  desk_.load_file();
  EXPECT_EQ(parameters()[5], 0x606);
  EXPECT_EQ(host_.last_status(), "Load File ok");
}

}  // namespace
}  // namespace qv5123
