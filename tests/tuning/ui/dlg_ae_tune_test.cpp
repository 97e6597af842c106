#include "tuning/ui/dlg_ae_tune.h"

#include <gtest/gtest.h>

#include <QSlider>

#include "support/page_bench.h"

namespace qv5123 {
namespace {

class AeTunePage : public test::PageBench<CDlgAeTune> {
 protected:
  void load(const std::string& reply) {
    user_.click("Load <- ISP");
    answer_load(reply);
    EXPECT_EQ(wire(0), "@6900*");
  }
};

TEST_F(AeTunePage, GainsAskFirstAndCancelRestores) {
  user_.expect_named_controls();
  host_.user.answers = {Answer::yes};
  user_.type("Sensor Digital Gain", 9);
  user_.click("Sensor Digital Gain Set");
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_EQ(host_.user.questions[0].text, "If this option changed, must be reset of Image TUNE by ISO step");
  EXPECT_EQ(wire(), "@3809*");

  host_.doc.user_data.set_entry(287, 40);
  user_.type("ISP Digital Gain", 99);
  user_.click("ISP Digital Gain Set");
  EXPECT_EQ(wire(), "");
  EXPECT_EQ(user_.number("ISP Digital Gain"), 40);
  host_.doc.user_data.set_entry(287, 200);
  user_.type("NR Step 1", 5);
  user_.click("ISP Digital Gain Set");
  page_.chosen_again();
  EXPECT_EQ(user_.number("NR Step 1"), 5) << "what was typed but not set stays";
  EXPECT_EQ(user_.number("ISP Digital Gain"), 127);
}

TEST_F(AeTunePage, SingleValuesOnTheWire) {
  user_.find<QSlider>("AE Target bar")->setValue(33);
  user_.click("AE Target Set");
  user_.click("More");
  user_.type("AE 0x3C", 0x5A);
  user_.click("AE 0x3C Set");
  user_.type("Angle", -45);
  user_.click("Angle Set");
  for (int i = 475; i < 478; ++i) host_.doc.user_data.set_entry(static_cast<std::size_t>(i), i - 474);
  user_.type("Decision Value", 200);
  user_.click("Decision Value Set");
  user_.choose("Smart IR", 2);
  EXPECT_EQ(wire(), "@3a21*@3c5a*@605a*@8c01*@8c02*@8c03*@8cc8*@6702*");
}

TEST_F(AeTunePage, ColoursBelongToTheChosenLightSource) {
  user_.click("Light-1");
  user_.find<QSlider>("Light source Sum bar")->setValue(-7);
  EXPECT_EQ(user_.number("Light source kind"), 0);
  user_.click("Light source Sum Set");
  user_.type("Light source kind", 2);
  user_.find<QSlider>("Light source Sum bar")->setValue(250);
  user_.click("Light source Sum Set");
  EXPECT_EQ(wire(), "@fa01*@4e01*@4f07*@fa00*@fa01*@4e01*@51fa*@fa00*");
  user_.type("Saturation", -64);
  user_.click("Saturation Set");
  user_.type("AWB R Weight", -2);
  user_.type("AWB B Weight", 50);
  user_.click("AWB Weight Set");
  EXPECT_EQ(wire(), "@fa01*@4e01*@5b00*@fa00*@30ff*@30fe*@3000*@3032*");
  user_.click("Outdoor");
  EXPECT_EQ(user_.number("Saturation"), 0);
  user_.click("Light-1");
  EXPECT_EQ(user_.number("Saturation"), -64);
  host_.doc.user_data.set_entry(378, 7);
  user_.click("Load <- File");
  EXPECT_EQ(user_.number("Light source kind"), 7) << "a file may hold a kind that is not known";
  user_.type("Light source kind", 5);
  EXPECT_EQ(user_.number("Light source kind"), 2);
}

TEST_F(AeTunePage, OrientationIsStoredWrittenAndSent) {
  user_.click("FLIP");
  EXPECT_FALSE(user_.checked("None"));
  EXPECT_EQ(host_.written.entry(291), 2);
  user_.click("MIRROR");
  user_.click("None");
  EXPECT_FALSE(user_.checked("FLIP"));
  EXPECT_EQ(host_.user_data_writes, 3);
  EXPECT_EQ(wire(), "@fa01*@5f02*@fa00*@fa01*@5f03*@fa00*@fa01*@5f00*@fa00*");
}

TEST_F(AeTunePage, StepRowsAreCorrectedAndTold) {
  const int typed[] = {10, 5, 20, 30, 40, 300};
  for (int step = 0; step < 6; ++step) user_.type(QString("ISO Step %1").arg(step), typed[step]);
  user_.click("ISO Set");
  EXPECT_EQ(wire(), "@4100*@4201*@4101*@4205*@4102*@4205*@4103*@4214*@4104*@421e*@4105*@4228*@4106*@42fa*");
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "At least must be equal or smaller than next step value.");
  EXPECT_EQ(host_.user.messages[0].icon, Message::Icon::stop);
  EXPECT_EQ(user_.number("ISO Step 5"), 250);
  EXPECT_FALSE(user_.find<QSpinBox>("ISO Offset")->isEnabled());
  user_.choose("Video Mode", 3);
  EXPECT_EQ(user_.number("ISO Step 0"), 1);
  user_.type("Contrast Offset", -16);
  user_.click("Contrast Set");
  EXPECT_EQ(wire().substr(0, 12), "@4100*@c850*");
  user_.click("Case of IR-LED");
  user_.choose("Video Mode", 0);
  EXPECT_EQ(user_.number("ISO Step 0"), 1) << "the bank of the IR-LED, whatever the mode";
  user_.click("Case of IR-LED");
  EXPECT_EQ(user_.number("ISO Step 0"), 5);
}

TEST_F(AeTunePage, TheChipsValuesFillThePage) {
  std::string reply(486, '0');
  const auto put = [&reply](std::size_t byte, const std::string& hex) {
    reply.replace(2 * byte, hex.size(), hex);
  };
  put(0, "010a0b0c");
  put(7 + 5 + 1, "2a");  // ISO step 0 of the IR-LED bank
  put(226, "c85a");
  put(240, "090102");
  load(reply);
  EXPECT_EQ(host_.last_status(), "Load Isp ok");
  EXPECT_TRUE(user_.checked("MIRROR"));
  EXPECT_EQ(user_.number("ISO Step 0"), 0x2A);
  EXPECT_EQ(user_.number("Angle"), -45);
  EXPECT_EQ(user_.index("Smart IR"), -1) << "the list has no such index";
  EXPECT_EQ(user_.index("Video Mode"), 1);
  EXPECT_FALSE(user_.find<QComboBox>("Video Mode")->isEnabled());
  put(241, "007f");
  load(reply);
  EXPECT_EQ(user_.index("Video Mode"), -1);
  EXPECT_FALSE(user_.find<QSpinBox>("Bright Step 1")->isEnabled()) << "no bank belongs to the format";
  user_.click("ISO Set");
  EXPECT_EQ(wire(), "");
}

TEST_F(AeTunePage, FullSaveTakesWhatIsTypedAndNotSet) {
  user_.type("AE Target", 50);
  user_.type("Sharpness Step 2", 7);
  user_.click("File/Flash Save");
  const std::string sent = wire(20000);
  EXPECT_NE(sent.find("@3a32*"), std::string::npos);
  EXPECT_NE(sent.find("@4103*@4407*"), std::string::npos);
  EXPECT_EQ(host_.last_status(), "AE_Tune Data Saving...") << "the chip is storing";
  fake_.advance(10000);
  EXPECT_EQ(host_.last_status(), "Data Save Done...");
}

}  // namespace
}  // namespace qv5123
