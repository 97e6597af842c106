#include "tuning/dynamic_desk.h"

#include "support/desk_bench.h"
#include "support/desk_fields.h"

namespace qv5123 {
namespace {

constexpr auto kNumber = DynamicControl::first_number;
constexpr std::size_t kRowContrast = 5;

class DynamicDeskTest : public test::DeskBench {
 protected:
  void type(const char* name, int number) {
    desk_.model().set_number(test::field_place(desk_, name), number);
  }
  int number(const char* name) const { return desk_.model().numbers()[test::field_place(desk_, name)]; }
  void set(DynamicControl control, std::size_t index = 0) { desk_.set(control, index, host_.user); }
  void load(const std::string& reply) {
    desk_.start_load();
    answer_load(reply);
    EXPECT_EQ(wire(0), "@6900*");
  }

  DynamicDesk desk_{host_, image()};
};

TEST_F(DynamicDeskTest, GainsAskFirstAndCancelRestores) {
  host_.user.answers = {Answer::yes};
  type("sensor_digital_gain", 9);
  set(kNumber, 1);
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_EQ(host_.user.questions[0].title, "Gain Control");
  EXPECT_EQ(host_.user.questions[0].text, "If this option changed, must be reset of Image TUNE by ISO step");
  EXPECT_EQ(wire(), "@3809*");

  image().set_entry(287, 40);
  type("isp_digital_gain", 99);
  set(kNumber, 2);
  EXPECT_EQ(number("isp_digital_gain"), 99) << "what was before comes from no file";
  ASSERT_EQ(host_.user.questions.size(), 3u);
  EXPECT_EQ(host_.user.questions[2].preferred, Answer::no);
  image().mark_loaded();
  set(kNumber, 2);
  EXPECT_EQ(wire(), "");
  EXPECT_EQ(number("isp_digital_gain"), 40);
  image().set_entry(287, 200);
  set(kNumber, 2);
  EXPECT_EQ(number("isp_digital_gain"), 127) << "a bar has no place outside its range";
}

TEST_F(DynamicDeskTest, WhatIsSentBesideAValueIsAskedAboutWithoutAFile) {
  for (int i = 475; i < 478; ++i) image().set_entry(static_cast<std::size_t>(i), i - 474);
  type("dpc_decision", 200);
  set(DynamicControl::dpc_decision);
  EXPECT_EQ(host_.user.questions.size(), 1u) << "three of the bytes come from no file";
  host_.user.answers = {Answer::yes};
  set(DynamicControl::dpc_decision);
  EXPECT_EQ(wire(), "@8c01*@8c02*@8c03*@8cc8*");
  EXPECT_EQ(host_.last_status(), "Decision Value: 1 register sent");
  test::expect_controls_write_registers(desk_);
}

TEST_F(DynamicDeskTest, StepRowsAreThoseOfTheModeOrOfTheIrLed) {
  desk_.choose_video_mode(3);
  EXPECT_EQ(desk_.cell(kRowContrast, 0), test::field_place(desk_, "cvbs.contrast.offset"));
  type("cvbs.contrast.offset", -16);
  set(DynamicControl::step_row, 6 * 2 + kRowContrast);
  EXPECT_EQ(wire().substr(0, 12), "@4100*@c850*");
  desk_.switch_ir_led(true);
  desk_.choose_video_mode(0);
  EXPECT_EQ(desk_.cell(kRowIso, 1), test::field_place(desk_, "ir_led.iso.step0")) << "whatever the mode";
  desk_.switch_ir_led(false);
  EXPECT_EQ(desk_.cell(kRowIso, 1), test::field_place(desk_, "tvi.iso.step0"));
}

TEST_F(DynamicDeskTest, WhatAFileHasOutsideTheRangesIsKept) {
  image().set_entry(292, 9);     // the offset of ISO
  image().set_entry(293, 255);   // ISO, above 250
  image().set_entry(327, 255);   // contrast of -191
  image().set_entry(328, 0x40);  // contrast of 0
  desk_.load_file();
  EXPECT_EQ(host_.last_status(), "Load File ok");
  EXPECT_EQ(number("tvi.contrast.offset"), -191);
  EXPECT_EQ(number("tvi.contrast.step0"), 0);
  type("tvi.iso.step1", 260);
  UserDataImage kept;
  desk_.model().store(kept);
  EXPECT_EQ(kept.entry(292), 9);
  EXPECT_EQ(kept.entry(293), 255);
  EXPECT_EQ(kept.entry(294), 250) << "what is typed is limited";
  EXPECT_EQ(kept.entry(327), 255);
  EXPECT_EQ(kept.entry(478), 1) << "the bar's lowest";
}

TEST_F(DynamicDeskTest, TheChipsValuesFillThePage) {
  std::string reply(486, '0');
  const auto put = [&reply](std::size_t byte, const std::string& hex) {
    reply.replace(2 * byte, hex.size(), hex);
  };
  put(0, "010a0b0c");
  put(7 + 5 + 1, "2a");  // ISO step 0 of the IR-LED bank
  put(217, "0102");
  put(226, "c85a");
  put(232, "ffff0032");  // the weights of Light-1
  put(240, "090102");
  load(reply);
  EXPECT_EQ(host_.last_status(), "Load Isp ok");
  EXPECT_EQ(number("orientation"), 1);
  EXPECT_EQ(number("isp_digital_gain"), 12);
  EXPECT_EQ(number("ir_led.iso.step0"), 0x2A);
  EXPECT_EQ(number("outdoor.value"), 2);
  EXPECT_EQ(number("light1.weight_r"), -1);
  EXPECT_EQ(number("light1.weight_b"), 50);
  EXPECT_EQ(number("hue_angle"), -45);
  EXPECT_EQ(number("smart_ir"), 9);
  EXPECT_EQ(number("video_mode"), 1) << "format 2";
  EXPECT_FALSE(desk_.video_mode_enabled()) << "the chip says that it is the case of the IR-LED";
  desk_.switch_ir_led(false);
  desk_.switch_ir_led(true);
  desk_.load_file();
  EXPECT_TRUE(desk_.video_mode_enabled());
  put(241, "007f");
  load(reply);
  EXPECT_EQ(desk_.bank(), std::nullopt) << "none belongs to the format";
  load(reply.substr(2));
  EXPECT_EQ(host_.last_status(), "AE_Tune Data Load Fail...");
}

TEST_F(DynamicDeskTest, FullSaveTakesWhatIsTypedAndNotSet) {
  type("ae_target", 50);
  type("tvi.sharpness.step2", 7);
  type("tvi.nr.step0", 7);
  host_.user.answers = {Answer::yes};
  desk_.start_save(host_.user, desk_.save(host_.user));
  const std::string sent = wire(20000);
  EXPECT_NE(sent.find("@3a32*"), std::string::npos);
  EXPECT_NE(sent.find("@4103*@4407*"), std::string::npos);
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].title, "NR Control");
  EXPECT_EQ(host_.user.messages[0].text, "At least must be equal or smaller than next step value.");
  EXPECT_EQ(host_.user.messages[0].icon, Message::Icon::stop);
  EXPECT_EQ(number("tvi.nr.step0"), 0) << "corrected";
  EXPECT_EQ(host_.last_status(), "AE_Tune Data Saving...") << "the chip is storing";
  fake_.advance(10000);
  EXPECT_EQ(host_.last_status(), "Data Save Done...");
}

}  // namespace
}  // namespace qv5123
