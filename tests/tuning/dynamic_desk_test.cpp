#include "tuning/dynamic_desk.h"

#include "support/desk_bench.h"
#include "support/desk_fields.h"
#include "support/traffic_text.h"
#include "tuning/page_model.h"

namespace qv5123 {
namespace {

constexpr std::size_t kRowBright = 1, kRowNr = 3, kRowFlatNr = 4, kRowContrast = 5;

/// Every bank's bytes count up from 0x30 times the bank's number, 8 to a row.
DynamicValues example() {
  UserDataImage file;
  int bank = 0;
  for (const std::size_t entry : {292, 334, 592, 707, 803}) {
    for (std::size_t cell = 0; cell < 42; ++cell)
      file.set_entry(entry + cell, 0x30 * bank + static_cast<int>(8 * (cell / 7) + cell % 7));
    ++bank;
  }
  DynamicValues values;
  load_page<DynamicPage>(values, file);
  int number = 11;
  for (const auto member : kDynamicNumbers) values.*member = number++;
  values.orientation = 3;
  values.light_sources = {{{0, 100}, {1, 200}, {2, 250}}};
  values.saturation = {-64, 0, 191};
  values.weights = {{{-50, 50}, {-1, 1}, {0, -2}}};
  values.hue_angle = -1;
  values.dpc_decision = 0x44;
  values.smart_ir = 2;
  values.video_mode = 1;
  return values;
}

/// Up to the first of the seven steps, and from the last one on; those between follow the same order.
constexpr char kSaveStart[] =
    "@f901*|@fa01*|@5f03*|@370b*|@380c*|@390d*|@3c10*|@3b0f*|@3a0e*|"
    "@4100*|@ce01*|@4101*|@ce05*|@4102*|@ce05*|@4103*|@ce14*|@4104*|@ce14*|@4105*|@ce1e*|@4106*|@ce1e*|"
    "@4100*|@cf00*|@4101*|@cf40*|@4102*|@cfff*|@4103*|@cfff*|@4104*|@cf00*|@4105*|@cf41*|@4106*|@cf42*|"
    "@4100*|@d000*|@4101*|@d001*|@4102*|@d002*|@4103*|@d003*|@4104*|@d004*|@4105*|@d005*|@4106*|@d006*|"
    "@4100*|@d101*|@4101*|@d102*|@4102*|@d103*|@4103*|@d104*|@4104*|@d105*|@4105*|@d106*|@4106*|@d107*|"
    "@4100*|@d208*|@4101*|@d209*|@4102*|@d20a*|@4103*|@d20b*|@4104*|@d20c*|@4105*|@d20d*|@4106*|@d20e*|"
    "@4100*|@d350*|@4101*|@d320*|@4102*|@d340*|@4103*|@d320*|@4104*|@d350*|@4105*|@d33f*|@4106*|@d33e*|"
    "@4100*|@4200*|@4830*|@c360*|@ce01*|@d4c0*|@4308*|@4938*|@c468*|@cf00*|@d5c8*|@4410*|"
    "@4a40*|@c570*|@d000*|@d6d0*|@4518*|@4b48*|@c678*|@d101*|@d7d8*|@4620*|@4c50*|@c780*|"
    "@d208*|@d8e0*|@4728*|@4d58*|@c888*|@d350*|@d9e8*|";

constexpr char kSaveEnd[] =
    "@4106*|@4206*|@4836*|@c366*|@ce1e*|@d4c6*|@430e*|@493e*|@c46e*|@cf42*|@d5ce*|@4416*|"
    "@4a46*|@c576*|@d006*|@d6d6*|@451e*|@4b4e*|@c67e*|@d107*|@d7de*|@4626*|@4c56*|@c786*|"
    "@d20e*|@d8e6*|@472e*|@4d5e*|@c88e*|@d33e*|@d9ee*|"
    "@4e00*|@4f64*|@4e01*|@50c8*|@4e02*|@51fa*|"
    "@4e00*|@5b00*|@4e01*|@5b40*|@4e02*|@5bff*|"
    "@602e*|@8c11*|@8c22*|@8c33*|@8c44*|"
    "@2fff*|@2fce*|@2f00*|@2f32*|"
    "@30ff*|@30ff*|@3000*|@3001*|"
    "@3100*|@3100*|@31ff*|@31fe*|"
    "@4e00*|@6702*|@fa00*|@f900*|";

TEST(Dynamic, FullSaveOnTheWire) {
  DynamicValues values = example();
  values.banks[3] = {{{9, 10, 5, 20, 20, 30, 30},
                      {-64, 0, 191, 300, -100, 1, 2},
                      {0, 1, 2, 3, 4, 5, 6},
                      {1, 2, 3, 4, 5, 6, 7},
                      {8, 9, 10, 11, 12, 13, 14},
                      {-16, 32, 0, 40, -20, 1, 2}}};
  UserDataImage image;
  for (int i = 0; i < 3; ++i) image.set_entry(475 + i, 0x11 * (i + 1));  // of the dead pixels
  const DynamicFullSave save = dynamic_full_save(values, image);
  const std::string wire = on_wire(save.traffic);
  EXPECT_EQ(wire.substr(0, std::size(kSaveStart) - 1), kSaveStart);
  EXPECT_EQ(wire.substr(wire.size() - (std::size(kSaveEnd) - 1)), kSaveEnd);
  EXPECT_EQ(save.traffic.size(), 9u + 6 * 14 + 7 * 31 + 33);
  ASSERT_EQ(save.messages.size(), 1u);
  EXPECT_EQ(save.messages[0].title, "ISO Control");
  EXPECT_EQ(save.values.banks[3][kRowIso], (StepCells{1, 5, 5, 20, 20, 30, 30}));
}

TEST(Dynamic, ALightSourceOfNoKnownKindIsNeitherStoredNorSent) {
  UserDataImage image;
  image.set_word(378, 0x01C8);
  DynamicValues odd = example();
  odd.light_sources[1] = {3, 77};
  store_page<DynamicPage>(odd, image);
  EXPECT_EQ(image.word(378), 0x01C8);
  EXPECT_EQ(image.word(376), 0x0064);
  EXPECT_EQ(on_wire(light_source_traffic(odd, 1)), "@fa01*|@4e01*|@fa00*|");
}

TEST(StepTable, OnePassForwardAgainstTheUncorrectedNextStep) {
  const StepRowWrite nr = write_step_row(BankId::ir_led, kRowNr, {9, 3, 5, 4, 2, 300, -1});
  // 9>3 -> 3; 3; 5>4 -> 4; 4>2 -> 2; 2; 255>0 -> 0; the last is not below it.
  EXPECT_EQ(nr.cells, (StepCells{3, 3, 4, 2, 2, 0, 0}));
  const StepMessage above{"NR Control", "At least must be equal or smaller than next step value."};
  EXPECT_EQ(nr.messages, (std::vector<StepMessage>{above, above, above, above}));

  // Lowering 7 to 2 leaves it below the 6 before it, which a single pass does not mend.
  const StepRowWrite flat = write_step_row(BankId::tvi, kRowFlatNr, {6, 6, 7, 2, 3, 8, 8});
  EXPECT_EQ(flat.cells, (StepCells{6, 6, 2, 2, 3, 8, 8}));
  EXPECT_TRUE(write_step_row(BankId::tvi, kRowContrast, {9, 3, 5, 4, 2, 3, 1}).messages.empty());

  // Cells are limited and encoded.
  const auto sent = [](std::size_t row, const StepCells& cells) {
    std::vector<int> bytes;
    const Traffic traffic = write_step_row(BankId::tvi, row, cells).traffic;
    for (std::size_t i = 1; i < traffic.size(); i += 2) bytes.push_back(traffic[i][0].value);
    return bytes;
  };
  EXPECT_EQ(sent(kRowIso, {77, 1, 2, 2, 250, 251, 300}), (std::vector<int>{1, 1, 2, 2, 250, 250, 250}));
  EXPECT_EQ(sent(kRowBright, {-65, -64, 0, 191, 192, 1, 2})[0], 0);
  EXPECT_EQ(sent(kRowContrast, {-16, 32, -17, 33, 0, 1, -1}), (std::vector<int>{80, 32, 80, 32, 64, 63, 65}));
}

constexpr auto kNumber = DynamicControl::first_number;

class DynamicDeskTest : public test::DeskBench {
 protected:
  void type(const char* name, int number) {
    desk_.model().set_number(test::field_place(desk_, name), number);
  }
  int number(const char* name) const { return desk_.model().numbers()[test::field_place(desk_, name)]; }
  void set(DynamicControl control, std::size_t index = 0) { desk_.set(control, index, host_.user); }
  void load(const std::string& reply) {
    load_desk(desk_, reply);
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
