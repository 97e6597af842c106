#include "tuning/ui/dlg_ae_tune.h"

#include <gtest/gtest.h>

#include <QAccessible>

#include "support/page_bench.h"

namespace qv5123 {
namespace {

class AeTunePage : public test::PageBench<CDlgAeTune> {
 protected:
  void set_text(const char* name, const QString& text) const {
    QAccessibleInterface* edit = QAccessible::queryAccessibleInterface(user_.find<QWidget>(name));
    edit->editableTextInterface()->replaceText(0, edit->textInterface()->characterCount(), text);
  }
};

TEST_F(AeTunePage, BarsAndEditsShowTheSameAndSetSends) {
  user_.expect_named_controls();
  // No setting file was loaded: what comes from one is asked about.
  host_.user.answers = {Answer::yes, Answer::yes, Answer::no, Answer::yes};
  user_.find<QSlider>("AE Target bar")->setValue(33);
  user_.click("AE Target Set");
  user_.type("AE 0x3C", 0x5A);
  user_.click("AE 0x3C Set");
  user_.type("Angle", -45);
  user_.click("Angle Set");
  user_.type("Decision Value", 200);
  user_.click("Decision Value Set");
  user_.choose("Smart IR", 2);
  user_.type("ISP Digital Gain", 99);
  user_.click("ISP Digital Gain Set");
  EXPECT_EQ(wire(), "@3a21*@3c5a*@605a*@8c00*@8c00*@8c00*@8cc8*@6702*@3963*");
  user_.type("NR Step 1", 5);
  user_.click("ISP Digital Gain Set");
  page_.chosen_again();
  EXPECT_EQ(user_.number("NR Step 1"), 5) << "what was typed but not set stays";
  EXPECT_EQ(user_.number("ISP Digital Gain"), 1) << "cancelled";
}

TEST_F(AeTunePage, ColoursBelongToTheChosenLightSource) {
  user_.click("Light-1");
  user_.find<QSlider>("Light source Sum bar")->setValue(-7);
  user_.click("Light source Sum Set");
  EXPECT_EQ(wire(), "@fa01*@4e01*@4f07*@fa00*");
  user_.type("Light source kind", 2);
  user_.find<QSlider>("Light source Sum bar")->setValue(250);
  EXPECT_EQ(user_.number("Light source value"), 250);
  user_.click("Light source Sum Set");
  user_.type("Light source value", 7);
  EXPECT_EQ(user_.find<QSlider>("Light source Sum bar")->value(), 7);
  user_.type("Saturation", -64);
  user_.click("Saturation Set");
  user_.type("AWB R Weight", -2);
  user_.type("AWB B Weight", 60);
  user_.click("AWB Weight Set");
  EXPECT_EQ(wire(), "@fa01*@4e01*@51fa*@fa00*@fa01*@4e01*@5b00*@fa00*@30ff*@30fe*@3000*@3032*");
  EXPECT_EQ(user_.find<QSpinBox>("AWB R Weight")->toolTip(), "-50..50, register 0x30");
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

TEST_F(AeTunePage, StepsAreLimitedCorrectedAndTold) {
  auto* last = user_.find<QSpinBox>("ISO Step 5");
  last->findChild<QLineEdit*>()->setText("300");
  user_.type("ISO Step 0", 10);
  user_.type("ISO Step 1", 5);
  user_.click("ISO Set");
  EXPECT_EQ(wire(), "@4100*@4201*@4101*@4205*@4102*@4201*@4103*@4201*@4104*@4201*@4105*@4201*@4106*@42fa*");
  EXPECT_EQ(last->value(), 250);
  EXPECT_TRUE(user_.find<QPlainTextEdit>("Messages")->toPlainText().startsWith("ISO Control: At least"));
  EXPECT_FALSE(user_.find<QSpinBox>("ISO Offset")->isEnabled());
  user_.choose("Video Mode", 3);
  EXPECT_EQ(user_.number("ISO Step 0"), 1);
  EXPECT_EQ(last->toolTip(), "0..250, register 0xC3");
}

TEST_F(AeTunePage, AssistiveToolsToggleAndTypeAsAUserDoes) {
  set_text("AE Target", "41");
  user_.click("AE Target Set");
  set_text("Saturation", "5");
  user_.toggle("Light-2");
  EXPECT_EQ(user_.number("Saturation"), 0);
  user_.toggle("Outdoor");
  EXPECT_EQ(user_.number("Saturation"), 5) << "taken before another light source was chosen";
  set_text("NR Step 5", "7");
  user_.toggle("Case of IR-LED");
  EXPECT_EQ(user_.number("NR Step 5"), 0);
  user_.toggle("Case of IR-LED");
  EXPECT_EQ(user_.number("NR Step 5"), 7);
  user_.toggle("More");
  EXPECT_FALSE(user_.find<QPlainTextEdit>("Messages")->parentWidget()->isHidden());
  for (const char* box : {"MIRROR", "FLIP", "None"}) user_.toggle(box);
  EXPECT_TRUE(user_.checked("None"));
  EXPECT_FALSE(user_.checked("FLIP"));
  user_.toggle("None");
  EXPECT_TRUE(user_.checked("None")) << "neither bit is set";
  EXPECT_EQ(host_.user_data_writes, 4);
  EXPECT_EQ(host_.written.entry(291), 0);
  EXPECT_EQ(wire(), "@3a29*@fa01*@5f01*@fa00*@fa01*@5f03*@fa00*@fa01*@5f00*@fa00*@fa01*@5f00*@fa00*");
}

TEST_F(AeTunePage, WhatNoListHasIsLeftUnselected) {
  std::string reply(486, '0');
  reply.replace(2 * 240, 6, "09007f");
  user_.click("Load <- ISP");
  answer_load(reply);
  EXPECT_EQ(user_.index("Smart IR"), -1);
  EXPECT_EQ(user_.index("Video Mode"), -1);
  EXPECT_FALSE(user_.find<QSpinBox>("Bright Step 1")->isEnabled()) << "no bank belongs to the format";
  wire();
  user_.click("ISO Set");
  EXPECT_EQ(wire(), "");
}

}  // namespace
}  // namespace qv5123
