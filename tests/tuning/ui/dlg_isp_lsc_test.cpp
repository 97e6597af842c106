#include "tuning/ui/dlg_isp_lsc.h"

#include <gtest/gtest.h>

#include "support/fake_page_host.h"
#include "support/page_driver.h"

namespace qv5123 {
namespace {

const QString kParameters[] = {"Parameter-1 RED", "Parameter-1 GREEN", "Parameter-1 BLUE",
                               "Parameter-2 RED", "Parameter-2 GREEN", "Parameter-2 BLUE"};
constexpr char kSwitchedOff[] = "@a001*@a101*";

class LensPage : public testing::Test {
 protected:
  LensPage() {
    host_.page = &page_;
    page_.resize(900, 650);
  }
  /// Plays a chip with a flat field that falls off from the middle of the line; `dark_at` reads 0 in green.
  void answer_reads(int dark_at = -1) {
    wire_.sender.chip = [this, dark_at, x = 0](const std::string& bytes) mutable {
      if (bytes.starts_with("@920c*@9238*")) x = std::stoi(bytes.substr(15, 2), nullptr, 16) << 8;
      if (bytes.starts_with("@920c*@9239*")) x |= std::stoi(bytes.substr(15, 2), nullptr, 16);
      if (!bytes.starts_with("@94")) return;
      const double d = (x - 960) / 2048.0;
      int level = 0x10;
      if (bytes == "@940c*@943d*") level = static_cast<int>(240 / (1 + 0.5 * d * d));
      if (bytes == "@940c*@943e*") level = x == dark_at ? 0 : static_cast<int>(200 / (1 + 0.5 * d * d));
      if (bytes == "@940c*@943f*") level = static_cast<int>(160 / (1 + 0.5 * d * d));
      char reply[8];
      std::snprintf(reply, sizeof reply, "~%02x^", static_cast<unsigned>(level));
      wire_.receive(reply);
    };
  }
  void switch_on() {
    drive_.click("Enable Color Picker");
    wire_.advance(3000);
    wire_.sender.writes.clear();
  }
  std::vector<int> parameters() const {
    std::vector<int> values;
    for (const QString& name : kParameters) values.push_back(drive_.number(name));
    return values;
  }
  bool enabled(const char* name) const { return drive_.find<QPushButton>(name)->isEnabled(); }
  QString log() const { return drive_.find<QPlainTextEdit>("Log")->toPlainText(); }

  test::FakeWire wire_;
  test::FakePageHost host_{wire_};
  CDlgIspLSC page_{host_};
  test::PageDriver drive_{page_};
};

TEST_F(LensPage, SwitchesThePickerAndMovesIt) {
  answer_reads();
  EXPECT_FALSE(enabled("LEFT"));
  drive_.click("Enable Color Picker");
  EXPECT_FALSE(enabled("LEFT")) << "not before the chip has followed";
  EXPECT_FALSE(enabled("CALIBRATION"));
  wire_.advance(3000);
  EXPECT_TRUE(enabled("LEFT"));
  const std::vector<std::string> on = {"@940a*@9429*",
                                       "@940a*@9410*",
                                       "@920a*@9210*@9300*",
                                       "@920a*@9220*@9380*",
                                       "@920a*@9229*@9390*",
                                       "@a000*",
                                       "@a100*",
                                       "@920c*@923a*@9302*",
                                       "@920c*@923b*@931c*",
                                       "@920c*@9238*@9303*",
                                       "@920c*@9239*@93c0*"};
  EXPECT_EQ(wire_.sender.writes, on);
  EXPECT_EQ(host_.last_status(),
            "Start color capture. Please click direction button to move cursor on screen.");

  wire_.sender.writes.clear();
  drive_.choose("Move Step", 7);
  drive_.click("LEFT");
  drive_.type("Y Pos", 10);
  drive_.click("UP");
  wire_.advance(1000);
  EXPECT_EQ(drive_.number("X Pos"), 832);
  EXPECT_EQ(drive_.number("Y Pos"), 0);
  EXPECT_EQ(wire_.sender.wire(),
            "@920c*@9238*@9303*@920c*@9239*@9340*@920c*@923a*@9300*@920c*@923b*@930a*"
            "@920c*@923a*@9300*@920c*@923b*@9300*")
      << "what was typed leaves as well";

  wire_.sender.writes.clear();
  drive_.click("Enable Color Picker");
  EXPECT_FALSE(enabled("LEFT"));
  wire_.advance(3000);
  EXPECT_TRUE(wire_.sender.wire().ends_with("@920a*@9220*@9390*@920a*@9229*@9310*@a001*@a101*"));
  EXPECT_EQ(host_.last_status(), "End color capture.");
}

TEST_F(LensPage, WhatIsTypedDuringASwitchIsSentAfterIt) {
  answer_reads();
  drive_.type("X Pos", 1);
  drive_.click("Enable Color Picker");
  wire_.advance(900);  // into the sending of the position
  drive_.type("X Pos", 0x201);
  drive_.type("X Pos", 0x302);
  wire_.advance(3000);
  EXPECT_TRUE(wire_.sender.wire().ends_with(
      "@920c*@9238*@9300*@920c*@9239*@9301*@920c*@9238*@9303*@920c*@9239*@9302*"));
}

TEST_F(LensPage, ASwitchDuringASwitchWaitsForIt) {
  answer_reads();
  drive_.click("Enable Color Picker");
  wire_.advance(150);
  drive_.click("Enable Color Picker");
  wire_.advance(5000);
  const std::string wire = wire_.sender.wire();
  EXPECT_LT(wire.find("@a000*@a100*"), wire.find("@920a*@9220*@9390*"));
  EXPECT_TRUE(wire.ends_with(kSwitchedOff));
  EXPECT_FALSE(drive_.checked("Enable Color Picker"));
}

TEST_F(LensPage, CalibratesSendsAndSwitchesOff) {
  answer_reads();
  switch_on();
  drive_.click("CALIBRATION");
  wire_.advance(10000);
  EXPECT_FALSE(enabled("CALIBRATION"));
  EXPECT_FALSE(enabled("UP"));
  EXPECT_GT(host_.progress.back(), 10);
  EXPECT_TRUE(log().startsWith("X pos: 16 \tR=216\tG=180\tB=144\nX pos: 272 \t"));
  wire_.advance(60000);
  EXPECT_NEAR(parameters()[0], 512, 60);
  EXPECT_TRUE(log().contains("Center horizontal pos: 9"));
  EXPECT_FALSE(drive_.checked("Enable Color Picker"));
  EXPECT_EQ(host_.last_status(), "End color capture.");
  EXPECT_EQ(host_.busy, (std::vector<bool>{true, false, true, false})) << "the switch, then the sweep";
  const std::string wire = wire_.sender.wire();
  EXPECT_TRUE(wire.ends_with(kSwitchedOff));
  EXPECT_NE(wire.find("@6401*"), std::string::npos);

  const std::vector<int> all = parameters();
  wire_.sender.writes.clear();
  drive_.type("Correction Ratio", 0);
  EXPECT_EQ(parameters(), std::vector<int>(6, 0));
  EXPECT_TRUE(log().startsWith("Center horizontal pos: 9"));
  wire_.advance(200);
  EXPECT_EQ(wire_.sender.writes, (std::vector<std::string>{"@6400*@6400*@6400*@6400*@6400*@6400*",
                                                           "@6500*@6500*@6500*@6500*@6500*@6500*"}));
  drive_.type("Correction Ratio", 100);
  EXPECT_EQ(parameters(), all);
}

TEST_F(LensPage, TheRatioCountsUntilThePickerIsOff) {
  answer_reads();
  switch_on();
  drive_.click("CALIBRATION");
  while (host_.progress.empty() || host_.progress.back() != 100) wire_.advance(10);
  wire_.advance(300);  // the parameters have left
  drive_.type("Correction Ratio", 0);
  EXPECT_NE(wire_.sender.wire().find("@6401*"), std::string::npos);
  wire_.advance(3000);
  EXPECT_EQ(parameters(), std::vector<int>(6, 0));
  EXPECT_TRUE(
      wire_.sender.wire().ends_with("@a101*@6400*@6400*@6400*@6400*@6400*@6400*"
                                    "@6500*@6500*@6500*@6500*@6500*@6500*"));
  EXPECT_TRUE(host_.user.messages.empty());
}

TEST_F(LensPage, SaysWhenTheParametersDoNotReachTheChip) {
  answer_reads();
  switch_on();
  drive_.click("CALIBRATION");
  while (host_.progress.empty() || host_.progress.back() != 100) wire_.advance(10);
  wire_.sender.connected = false;
  wire_.advance(3000);
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "The parameters did not reach the chip: the port failed.");
}

TEST_F(LensPage, SwitchingOffAbortsAndKeepsTheParameters) {
  answer_reads();
  drive_.type("Parameter-1 RED", 77);
  switch_on();
  drive_.click("CALIBRATION");
  wire_.advance(10000);
  drive_.click("Enable Color Picker");
  wire_.advance(5000);
  EXPECT_EQ(parameters(), (std::vector<int>{77, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(enabled("CALIBRATION"));
  EXPECT_TRUE(wire_.sender.wire().ends_with(kSwitchedOff));
  EXPECT_EQ(wire_.sender.wire().find("@64"), std::string::npos);
  EXPECT_EQ(host_.busy.back(), false);
}

TEST_F(LensPage, ABadReadingStopsWithItsPlace) {
  answer_reads(272);
  switch_on();
  drive_.click("CALIBRATION");
  wire_.advance(10000);
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "Calibration stopped: green reads 0 at X pos 272.");
  EXPECT_FALSE(drive_.checked("Enable Color Picker"));
  EXPECT_FALSE(enabled("CALIBRATION"));
  EXPECT_TRUE(drive_.find<QWidget>("Enable Color Picker")->isEnabled());
  EXPECT_EQ(wire_.sender.wire().find("@64"), std::string::npos);
}

TEST_F(LensPage, LoadsFromTheChipOrSaysThatItFailed) {
  for (const char* reply : {"~000102030405060708090aFFffff^", "~00010203^", ""}) {
    drive_.click("Load <- ISP");
    wire_.advance(100);
    EXPECT_EQ(wire_.sender.writes.back(), "@6b00*");
    wire_.receive(reply);
    wire_.advance(2000);
    const bool whole = std::string(reply).size() > 20;
    EXPECT_EQ(host_.last_status(), whole ? "Load Isp ok" : "ISP Load Fail...");
    EXPECT_EQ(parameters(), (std::vector<int>{1, 0x203, 0x405, 0x607, 0x809, 0xAFF})) << reply;
  }
}

TEST_F(LensPage, SavesToFileAndChipAndComesBack) {
  for (int i = 0; i < 6; ++i) drive_.type(kParameters[i], 0x101 * (i + 1));
  drive_.click("Parameter-1 S");
  drive_.click("Parameter-2 S");
  drive_.click("File/Flash Save");
  wire_.advance(2000);
  EXPECT_EQ(wire_.sender.writes,
            (std::vector<std::string>{"@6401*@6401*@6402*@6402*@6403*@6403*",
                                      "@6504*@6504*@6505*@6505*@6506*@6506*", "@f901*", "@fa01*",
                                      "@6401*@6401*", "@6402*@6402*", "@6403*@6403*", "@6504*@6504*",
                                      "@6505*@6505*", "@6506*@6506*", "@fa00*", "@f900*"}));
  EXPECT_EQ(host_.last_status(), "File save done");
  EXPECT_EQ(host_.full_saves, 1);
  EXPECT_EQ(host_.written.word(440), 0x101);
  EXPECT_EQ(host_.written.word(450), 0x606);
  host_.write_succeeds = false;
  drive_.click("File/Flash Save");
  wire_.advance(2000);
  EXPECT_EQ(host_.last_status(), "Only the chip was saved: no setting file was written.");

  CDlgIspLSC other(host_);
  EXPECT_EQ(test::PageDriver(other).number("Parameter-2 BLUE"), 0x606);
  drive_.type("Parameter-2 BLUE", 1);
  drive_.click("Load <- File");
  EXPECT_EQ(drive_.number("Parameter-2 BLUE"), 0x606);
  EXPECT_EQ(host_.last_status(), "Load File ok");
}

TEST_F(LensPage, FlickerBoxesExcludeEachOther) {
  drive_.click("NTSC");
  drive_.click("PAL");
  EXPECT_FALSE(drive_.checked("NTSC"));
  EXPECT_TRUE(drive_.checked("PAL"));
  drive_.click("PAL");
  EXPECT_FALSE(drive_.checked("PAL"));
  wire_.advance(1000);
  EXPECT_EQ(wire_.sender.wire(), "@bd02*@bd01*@bd00*");
  drive_.expect_named_controls();
}

}  // namespace
}  // namespace qv5123
