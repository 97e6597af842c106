#include "tuning/ui/dlg_isp_front.h"

#include <gtest/gtest.h>

#include <map>

#include "support/page_bench.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

// 2M PAL C, RGGB, External, "+"; clamps 0x0123, 0x0234, 0x0345, 0xFFFF; Gamma, Sharpness, HUE, DPC, Raw Data;
// Color Suppress, dimmer 200, WDR Auto.
const std::string kReply = std::string("04020301") + "012302340345ffff" + "080011200880c802";

class FrontPage : public test::PageBench<CDlgIspFront> {
 protected:
  FrontPage() {
    page_.show();
    fake_.advance(100);
    wire();
  }
  void load() {
    fake_.receive("~" + kReply + "^");
    wire();
  }
  void reveal_service_area() {
    user_.type("Bit editor address", "000");
    for (const char* bit : {"7 = 1", "0 = 1", "7 = 0", "3 = 1", "0 = 0", "3 = 0"})
      user_.click(QString("Bit ") + bit);
    user_.type("Bit editor address", "5C1");
    user_.click("Get Info");
  }
  QString console() { return user_.find<QPlainTextEdit>("ISP tune console")->toPlainText(); }
};

TEST_F(FrontPage, ReadsTheChipWhenOpenedAndWhenChosenAgain) {
  user_.expect_named_controls();
  EXPECT_EQ(page_.focusWidget(), user_.find<QPushButton>("Load Isp")) << "which sets nothing on the chip";
  EXPECT_EQ(fake_.sender.writes.at(0), "@be00*");
  fake_.advance(2000);
  user_.type("Delay", 77);
  page_.chosen_again();
  fake_.advance(100);
  load();
  EXPECT_EQ(user_.index("Video Mode"), 4);
  EXPECT_EQ(user_.index("TDN Mode"), 2);
  EXPECT_EQ(user_.find<QAbstractButton>("Polarity +")->text(), "+");
  EXPECT_EQ(user_.number("B(0~4095)"), 0xFFFF);
  EXPECT_EQ(user_.index("WDR State"), 2);
  EXPECT_EQ(user_.number("Delay"), 77) << "not part of the reply";
}

TEST_F(FrontPage, IndexesThatNoListHasAreLeftUnselectedAndKept) {
  fake_.receive("~c8090401" + kReply.substr(8) + "^");
  wire();
  EXPECT_EQ(user_.index("Video Mode"), -1);
  EXPECT_EQ(user_.index("TDN Mode"), -1) << "Auto is no mode of this chip";
  user_.click("File/Flash Save");
  EXPECT_EQ(wire().substr(0, 24), "@fa01*@6f09*@6ec8*@7004*");
  host_.doc.fourth_tdn_mode = true;
  page_.chosen_again();
  fake_.advance(100);
  load();
  user_.choose("TDN Mode", 3);
  EXPECT_EQ(wire(), "@7004*");
}

TEST_F(FrontPage, ControlsStoreAndSend) {
  load();
  user_.choose("Video Mode", 15);
  user_.choose("RGB Order", 1);
  user_.click("RGB Order S");
  user_.type("Delay", 5);
  user_.click("Delay S");
  user_.type("IR On/Off", 0x106);
  user_.click("IR On/Off S");
  EXPECT_EQ(wire(), "@6e0f*@6f01*@6f01*@7105*@7406*") << "of a number the low byte";
  user_.click("LED Dimmer S");
  EXPECT_EQ(user_.number("LED Dimmer"), 88);
  user_.click("Polarity -");
  for (const char* clamp : {"R(0~4095)", "GR(0~4095)", "GB(0~4095)", "B(0~4095)"}) {
    user_.type(clamp, 0x1234);
    user_.click(QString(clamp) + " S");
  }
  user_.choose("WDR State", 1);
  EXPECT_EQ(wire(), "@8d58*@aa00*@7812*@7834*@7912*@7934*@7a12*@7a34*@7b12*@7b34*@8901*");
  for (const char* flag : {"Test Pattern", "Raw Data", "Gamma", "Brightness", "Sharpness", "Saturation",
                           "HUE", "DPC", "AE Task", "AWB Task"})
    user_.click(flag);
  EXPECT_EQ(wire(), "@8201*@8300*@8400*@8501*@8600*@8701*@8800*@8b00*@a000*@a100*");
  user_.click("Color Suppress");
  EXPECT_EQ(host_.user_data_writes, 1);
  EXPECT_EQ(wire(), "@ab00*");
  const std::map<std::size_t, int> stored{{454, 15},   {456, 1},    {464, 6}, {582, 88}, {551, 0},
                                          {469, 0x12}, {470, 0x34}, {549, 1}, {552, 0}};
  for (const auto& [entry, value] : stored) EXPECT_EQ(host_.doc.user_data.entry(entry), value) << entry;
}

TEST_F(FrontPage, FullSaveWritesTheFileAndSends) {
  load();
  user_.click("File/Flash Save");
  EXPECT_EQ(wire(),
            "@fa01*@6f02*@6e04*@7003*@7100*@7400*@8dc8*@aa01*@7801*@7823*@7902*@7934*@7a03*@7a45*@7bff*@7bff*"
            "@8902*@fa00*");
  EXPECT_EQ(host_.written.entry(582), 200) << "the save does not limit the dimmer";
  EXPECT_EQ(host_.statuses, std::vector<std::string>{"ISP Data Save Done."});
  host_.write_succeeds = false;
  user_.click("File/Flash Save");
  EXPECT_EQ(wire().size(), 18u * 6) << "the chip gets the settings all the same";
  EXPECT_EQ(host_.last_status(), "Only the chip was saved: no setting file was written.");
}

TEST_F(FrontPage, RawAccess) {
  load();
  user_.type("1Byte address", "A2c");
  user_.type("1Byte data", "3F");
  user_.click("Write(1Byte)");
  user_.type("1Byte data spin", 0x0B);
  EXPECT_EQ(user_.text("1Byte data"), "0B");
  user_.type("2Byte address", "123");
  user_.type("2Byte data", "12345");
  user_.click("Write(2Byte)");
  EXPECT_EQ(wire(), "@920a*@922c*@933f*@9501*@9523*@9600*@9600*");
  user_.type("1Byte address", "fff");
  user_.click("Write(1Byte)");
  EXPECT_EQ(host_.doc.front_gamma_level, 11.0);
  user_.type("Sensor address", "3012");
  user_.type("Sensor data", "01F4");
  user_.click("Sensor Write");
  EXPECT_EQ(wire(), "@9830*@9812*@9901*@99f4*");
  EXPECT_EQ(console(), "\nSensor Write :\n0x3012, 0500 (0x3012, 0x01f4)");
}

TEST_F(FrontPage, AnswersGoToTheMainConsoleAndTheFieldThatAsked) {
  load();
  answer("@9409*@9422*", "12");
  user_.type("1Byte address", "922");
  user_.click("Read(1Byte)");
  wire();
  EXPECT_EQ(user_.text("1Byte data"), "12");
  answer("@9b0a*@9b10*@9b0a*@9b11*", "a1b2");
  user_.type("Address Start", "A10");
  user_.type("Address End", "A11");
  user_.click("Dump");
  wire();
  EXPECT_EQ(host_.console, "0xF922 = 0x12\r\n0xFA10 = 0xA1\r\n0xFA11 = 0xB2\r\n");
  answer("@9b01*@9b00*@9b01*@9bfa*", std::string(502, '1'));
  user_.type("Address Start", "100");
  user_.type("Address End", "1FA");
  user_.click("Dump");
  wire();
  EXPECT_TRUE(
      host_.console.ends_with("0xB2\r\nDump 0xF100..0xF1FA: the answer is too long, it can hold 250 "
                              "registers.\r\n"));
  host_.console.clear();
  fake_.sender.connected = false;
  user_.click("Dump");
  wire();
  EXPECT_EQ(host_.console, "") << "the answer to the dump before is none to this one";
  fake_.sender.connected = true;
  user_.click("Read(2Byte)");
  EXPECT_EQ(wire(), "@9700*@9700*");
}

TEST_F(FrontPage, BitEditor) {
  load();
  user_.click("Bit 7 = 1");
  EXPECT_EQ(wire(), "") << "at address 0";
  answer("@9405*@9423*", "a5");
  user_.type("Bit editor address", "523");
  user_.click("Get Info");
  wire();
  EXPECT_TRUE(user_.checked("Bit 7 = 1"));
  EXPECT_TRUE(user_.checked("Bit 6 = 0"));
  EXPECT_EQ(console(), "a5 ");
  user_.click("Bit 1 = 1");
  EXPECT_EQ(wire(), "@9205*@9223*@93a7*");
  EXPECT_EQ(fake_.sender.writes.back(), "@93a7*") << "the address leaves in a flush of its own";
}

TEST_F(FrontPage, ParametersAreStoredWrittenSentAndReadBack) {
  load();
  host_.doc.user_data.set_entry(553, 0xAB);
  reveal_service_area();
  wire();
  EXPECT_EQ(console(), "Outdoor In Threshold : 0xAB\n0 ");
  user_.choose("Userdata Title", 33);
  user_.type("Userdata Value", "5E");
  user_.click("Userdata Set");
  EXPECT_EQ(wire(), "@fa01*@bc00*@bc5e*@fa00*");
  EXPECT_EQ(host_.written.entry(581), 0x5E);
  EXPECT_TRUE(console().endsWith("Contrast Knee_Thr_L : 0x00\nContrast Knee Thr_L : 0x5E\n"));
  for (std::size_t i = 475; i < 479; ++i) host_.doc.user_data.set_entry(i, static_cast<int>(i - 474));
  user_.choose("Userdata Title", 20);
  user_.click("Userdata Set");
  EXPECT_EQ(wire(), "@fa01*@8c01*@8c5e*@8c03*@8c04*@fa00*") << "with the rest of its group";
  EXPECT_TRUE(console().endsWith("DPC Double Enable : 0x5E\n"));
  user_.choose("Userdata Title", 33);
  host_.current_directory = UserDataImage{};
  user_.click("Userdata Set");
  wire();
  EXPECT_TRUE(console().endsWith("Contrast Knee Thr_L : 0x00\n")) << "the other file wins";
}

TEST_F(FrontPage, ClosingThePageEndsWhatIsUnderWay) {
  user_.click("Get Info");
  user_.click("Read(1Byte)");
  user_.click("File/Flash Save");
  fake_.advance(120);
  owned_.reset();
  fake_.advance(20000);
  EXPECT_EQ(host_.busy.back(), false);
}

TEST_F(FrontPage, TakesWhatTheChipDoesNotReportFromTheSettingFile) {
  host_.doc.user_data.set_entry(457, 7);
  host_.doc.user_data.set_entry(458, 7);
  host_.doc.user_data.set_entry(464, 9);
  host_.doc.user_data.set_entry(582, 33);
  host_.doc.user_data.mark_loaded();
  owned_.reset();
  CDlgIspFront page(host_);
  const test::PageDriver user(page);
  EXPECT_EQ(user.number("LED Dimmer"), 33) << "until the chip says otherwise";
  fake_.advance(100);
  load();
  EXPECT_EQ(user.number("LED Dimmer"), 200);
  user.click("File/Flash Save");
  EXPECT_TRUE(wire().find("@7107*@7409*") != std::string::npos);
  EXPECT_EQ(host_.written.entry(458), 7);
}

TEST_F(FrontPage, ADamagedAnswerSetsNoBits) {
  load();
  answer("@9405*@9423*", "1x");
  user_.type("Bit editor address", "523");
  user_.click("Get Info");
  wire();
  EXPECT_TRUE(user_.checked("Bit 4 = 0"));
}

TEST_F(FrontPage, ARegisterFileWaitsForTheWireAndCanBeStopped) {
  load();
  reveal_service_area();
  wire();
  const test::TemporaryFolder folder;
  const auto script = folder.write("script.txt", "001 01\n002 02\n003 03\n004 04");
  host_.user.paths = {folder.path() / "no such file", script, script, script};
  user_.click("Register File Load");
  EXPECT_EQ(wire(), "") << "a file that is not there";
  user_.click("Register File Load");
  fake_.link.send(Traffic(40, {{0xFA, 1}}));
  fake_.advance(2050);
  EXPECT_EQ(fake_.link.jobs_waiting(), 1u) << "one line at a time";
  EXPECT_EQ(host_.progress.back(), 25);
  user_.click("Stop");
  EXPECT_EQ(wire().substr(40 * 6), "@9200*@9201*@9301*@9200*@9202*@9302*");
  EXPECT_EQ(host_.last_status(), "Register file: stopped.");
  user_.click("Register File Load");
  fake_.advance(260);
  fake_.sender.connected = false;
  wire();
  EXPECT_EQ(host_.last_status(), "Register file: line 2 did not reach the chip.");
  fake_.sender.connected = true;
  user_.click("Register File Load");
  page_.hide();
  EXPECT_EQ(wire(), "") << "another page takes the place of this one";
}

}  // namespace
}  // namespace qv5123
