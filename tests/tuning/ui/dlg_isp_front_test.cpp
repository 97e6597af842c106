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
  EXPECT_EQ(user_.find<QAbstractButton>("Polarity +")->text(), "+");
  EXPECT_EQ(user_.index("WDR State"), 2);
  EXPECT_EQ(user_.number("Delay"), 77) << "not part of the reply";
  host_.doc.user_data.set_entry(457, 7);
  page_.reload_from_user_data();
  EXPECT_EQ(user_.number("Delay"), 7);
  page_.save_to_user_data();
  EXPECT_EQ(host_.doc.user_data.entry(582), 0) << "only the page's own buttons store";
}

TEST_F(FrontPage, IndexesThatNoListHasAreLeftUnselectedAndKept) {
  fake_.receive("~c8090401" + kReply.substr(8) + "^");
  wire();
  EXPECT_EQ(user_.index("Video Mode"), -1);
  EXPECT_EQ(user_.index("TDN Mode"), -1) << "Auto is no mode of this chip";
  host_.user.answers = {Answer::yes};
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
  EXPECT_EQ(host_.doc.user_data.entry(456), 0) << "only sent";
  user_.click("RGB Order S");
  user_.choose("TDN Mode", 0);
  user_.type("Delay", 5);
  user_.click("Delay S");
  user_.type("IR On/Off", 0x106);
  user_.click("IR On/Off S");
  EXPECT_EQ(wire(), "@6e0f*@6f01*@6f01*@7001*@7105*@7406*") << "of a number the low byte";
  user_.click("LED Dimmer S");
  EXPECT_EQ(user_.number("LED Dimmer"), 88);
  user_.click("Polarity -");
  EXPECT_EQ(user_.find<QAbstractButton>("Polarity +")->text(), "");
  int number = 0x1234;
  for (const char* clamp : {"R(0~4095)", "GR(0~4095)", "GB(0~4095)", "B(0~4095)"}) {
    user_.type(clamp, std::exchange(number, number + 0x111));
    user_.click(QString(clamp) + " S");
  }
  user_.choose("WDR State", 1);
  EXPECT_EQ(wire(), "@8d58*@aa00*@7812*@7834*@7913*@7945*@7a14*@7a56*@7b15*@7b67*@8901*");
  UserDataImage stored;
  for (const auto& [entry, value] : std::map<std::size_t, int>{
           {454, 15}, {456, 1}, {457, 5}, {458, 5}, {462, 1}, {464, 6}, {549, 1}, {582, 88}})
    stored.set_entry(entry, value);
  stored.set_word(465, 0x1234);
  stored.set_word(467, 0x1345);
  stored.set_word(469, 0x1456);
  stored.set_word(471, 0x1567);
  EXPECT_EQ(host_.doc.user_data, stored);
  EXPECT_EQ(host_.user_data_writes, 0);
}

TEST_F(FrontPage, TogglesSendWhatClicksSend) {
  load();
  constexpr const char* kFlags[] = {"Test Pattern", "Raw Data", "Gamma", "Brightness", "Sharpness",
                                    "Saturation",   "HUE",      "DPC",   "AE Task",    "AWB Task"};
  for (const char* flag : kFlags) user_.toggle(flag);
  EXPECT_EQ(wire(), "@8201*@8300*@8400*@8501*@8600*@8701*@8800*@8b00*@a000*@a100*");
  EXPECT_EQ(host_.doc.user_data, UserDataImage()) << "they are sent alone";
  user_.click("Color Suppress");
  EXPECT_EQ(host_.written.entry(552), 0);
  EXPECT_EQ(wire(), "@ab00*");
  user_.toggle("Color Suppress");
  EXPECT_EQ(host_.user_data_writes, 2);
  EXPECT_EQ(host_.written.entry(552), 128);
  EXPECT_EQ(wire(), "@ab80*");
  answer("@9405*@9423*", "a5");
  user_.type("Bit editor address", "523");
  user_.click("Get Info");
  wire();
  for (const char* bit : {"Bit 1 = 1", "Bit 1 = 1"}) {
    user_.toggle(bit);
    EXPECT_EQ(wire(), "@9205*@9223*@93a7*") << "also of the radio that is on";
    EXPECT_TRUE(user_.checked(bit));
  }
  user_.type("Bit editor address", "524");
  EXPECT_FALSE(user_.checked("Bit 1 = 1") || user_.checked("Bit 1 = 0")) << "its bits are not known";
}

TEST_F(FrontPage, ToolsUseTheirFields) {
  load();
  user_.type("1Byte address", "A2c");
  user_.type("1Byte data", "3F");
  user_.click("Write(1Byte)");
  EXPECT_EQ(user_.number("1Byte data spin"), 0x3F);
  user_.type("1Byte data spin", 0x0B);
  EXPECT_EQ(user_.text("1Byte data"), "0B");
  user_.type("2Byte address", "123");
  user_.type("2Byte data", "4567");
  user_.click("Write(2Byte)");
  user_.type("Sensor address", "3012");
  user_.type("Sensor data", "01F4");
  user_.click("Sensor Write");
  EXPECT_EQ(wire(), "@920a*@922c*@933f*@9501*@9523*@9645*@9667*@9830*@9812*@9901*@99f4*");
  answer("@940a*@942c*", "12");
  user_.click("Read(1Byte)");
  wire();
  EXPECT_EQ(user_.text("1Byte data"), "12");

  reveal_service_area();
  wire();
  user_.choose("Userdata Title", 33);
  user_.type("Userdata Value", "5E");
  host_.user.answers = {Answer::yes};
  user_.click("Userdata Set");
  EXPECT_EQ(wire(), "@fa01*@bc00*@bc5e*@fa00*");
  const QString console = user_.find<QPlainTextEdit>("ISP tune console")->toPlainText();
  EXPECT_TRUE(console.endsWith("Contrast Knee Thr_L : 0x5E\n"));
  user_.type("Address Start", "A10");
  user_.type("Address End", "A11");
  user_.click("Dump");
  EXPECT_EQ(wire(), "@9b0a*@9b10*@9b0a*@9b11*");
}

TEST_F(FrontPage, MarksWhatWouldBeMisread) {
  load();
  const auto marked = [this](const char* name) {
    QWidget* widget = user_.find<QWidget>(name);
    const auto* inner = widget->findChild<QLineEdit*>();
    return (inner ? inner : widget)->palette().color(QPalette::Base) == QColor(0xC0, 0x30, 0x30);
  };
  const std::map<const char*, std::pair<const char*, const char*>> fields{
      {"Bit editor address", {"F1A2", "1A2"}}, {"1Byte data", {"5", "05"}},
      {"2Byte data", {"12345", "1234"}},       {"Sensor data", {"", "12"}},
      {"Address End", {"12", "012"}},          {"Userdata Value", {"123", "12"}}};
  for (const auto& [name, texts] : fields) {
    EXPECT_FALSE(marked(name)) << name;
    user_.type(name, QString(texts.first));
    EXPECT_TRUE(marked(name)) << name;
    EXPECT_TRUE(user_.find<QWidget>(name)->toolTip().contains("hex digits"));
    user_.type(name, QString(texts.second));
    EXPECT_FALSE(marked(name)) << name;
  }
  EXPECT_FALSE(marked("IR On/Off"));
  user_.type("IR On/Off", 256);
  EXPECT_TRUE(marked("IR On/Off"));
  user_.click("IR On/Off S");
  EXPECT_TRUE(marked("IR On/Off")) << "as long as it stands";
  user_.type("IR On/Off", 255);
  EXPECT_FALSE(marked("IR On/Off"));
  EXPECT_TRUE(marked("B(0~4095)")) << "of what the chip reported, too";
}

TEST_F(FrontPage, ClosingThePageEndsWhatIsUnderWay) {
  user_.click("Get Info");
  user_.click("Read(1Byte)");
  host_.user.answers = {Answer::yes};
  user_.click("File/Flash Save");
  fake_.advance(120);
  owned_.reset();
  fake_.advance(20000);
  EXPECT_EQ(host_.busy.back(), false);
}

TEST_F(FrontPage, AnotherPageEndsTheRegisterFileAndHidesTheServiceArea) {
  load();
  reveal_service_area();
  wire();
  const test::TemporaryFolder folder;
  host_.user.paths = {folder.write("script.txt", "001 01\n002 02\n003 03\n004 04")};
  user_.click("Register File Load");
  EXPECT_EQ(user_.find<QPushButton>("Stop")->text(), "Stop");
  page_.hide();
  EXPECT_EQ(wire(), "");
  EXPECT_EQ(user_.find<QPushButton>("Register File Load")->text(), "Register File Load");
  page_.show();
  EXPECT_FALSE(user_.find<QPushButton>("Register File Load")->isVisible());
}

}  // namespace
}  // namespace qv5123
