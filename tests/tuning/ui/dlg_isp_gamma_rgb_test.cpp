#include "tuning/ui/dlg_isp_gamma_rgb.h"

#include <gtest/gtest.h>

#include <QKeyEvent>

#include "support/page_bench.h"
#include "tuning/gamma_curve.h"

namespace qv5123 {
namespace {

class GammaPage : public test::PageBench<CDlgIspGammaRgb> {
 protected:
  QSpinBox* point(int number, const char* curve) {
    return user_.find<QSpinBox>(QString("Point %1 %2").arg(number).arg(curve));
  }
  void mouse(QEvent::Type type, ChartPixel at) {
    auto* chart = user_.find<GammaChartView>("Gamma curves");
    test::mouse(chart, type, chart->to_widget(at));
  }
  void key(Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(user_.find<GammaChartView>("Gamma curves"), &event);
  }
};

TEST_F(GammaPage, ComputesAndAppliesTheSelectedCurve) {
  user_.click("Channel G");
  user_.find<QDoubleSpinBox>("Gamma Value")->setValue(1);
  user_.click("Gamma Value Set");
  EXPECT_EQ(point(21, "G")->value(), 896);
  EXPECT_EQ(point(22, "R")->value(), 0);
  EXPECT_TRUE(user_.find<QPlainTextEdit>("Messages")->toPlainText().startsWith("G: 0, 0, 5, 13,"));
  point(1, "G")->setValue(0x123);
  user_.click("Apply");
  fake_.advance(22 * 50);
  ASSERT_EQ(fake_.sender.writes.size(), 22u);
  EXPECT_EQ(fake_.sender.writes.front(), "@0401*@0423*");
  EXPECT_EQ(fake_.sender.writes.back(), "@0403*@04f8*");
  EXPECT_EQ(host_.last_status(), "Gamma data apply done");
}

TEST_F(GammaPage, TheOtherValueBeingZeroIsRefused) {
  user_.find<QDoubleSpinBox>("Front Gamma Value")->setValue(0);
  user_.click("Gamma Value Set");
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "Invalid values.");
  user_.find<QDoubleSpinBox>("Gamma Value")->setValue(0);
  user_.click("Front Gamma Value Set");
  EXPECT_EQ(host_.user.messages[1].text, "Invalid values");
  EXPECT_EQ(point(22, "R")->value(), 0);
}

TEST_F(GammaPage, FrontControlsHideBehindMoreAndTheRadioFallsBack) {
  auto* radio = user_.find<QAbstractButton>("Channel Front Gamma");
  user_.click("More");
  EXPECT_FALSE(radio->isHidden());
  user_.click("Channel B");
  radio->click();
  EXPECT_TRUE(user_.checked("Channel RGB"));
  user_.expect_named_controls();
}

TEST_F(GammaPage, LoadsFromTheChip) {
  std::string reply(352, '0');
  reply.replace(4, 4, "0ffc").replace(88, 4, "0123").replace(260, 4, "00AB").replace(348, 4, "03f8");
  user_.click("Load <- ISP");
  answer_load(reply);
  EXPECT_EQ(wire(), "@0700*");
  EXPECT_EQ(point(2, "Front")->value(), 1023);
  EXPECT_EQ(point(1, "R")->value(), 0x123);
  EXPECT_EQ(point(22, "B")->value(), 1016);
  EXPECT_EQ(host_.last_status(), "Load Isp ok..");
}

TEST_F(GammaPage, SavesEverythingBetweenTheBrackets) {
  host_.doc.user_data.mark_loaded();
  host_.doc.user_data.set_entry(44, 2);
  user_.click("Load <- File");
  EXPECT_EQ(host_.last_status(), "Load File ok..");
  EXPECT_TRUE(user_.checked("Channel R"));
  point(22, "B")->setValue(0x2FE);
  user_.click("File/Flash Save");
  fake_.advance(1000);
  point(1, "R")->setValue(1);  // too late for this save
  fake_.advance(10000);
  ASSERT_EQ(fake_.sender.writes.size(), 2u + 66 + 1 + 2);
  const std::string sent = wire();
  EXPECT_EQ(sent.substr(0, 24), "@f901*@fa01*@0300*@0300*");
  EXPECT_EQ(sent.substr(sent.size() - 30), "@0502*@05fe*@0602*@fa00*@f900*");
  EXPECT_EQ(host_.last_status(), "Gamma Save Done.");
}

TEST_F(GammaPage, DraggingAndKeysMovePoints) {
  user_.click("Channel G");
  mouse(QEvent::MouseButtonPress, gamma_pixel(256, 0));
  mouse(QEvent::MouseMove, gamma_pixel(300, 400));
  EXPECT_EQ(point(14, "G")->value(), 400);
  EXPECT_EQ(point(14, "R")->value(), 0) << "not shown";
  mouse(QEvent::MouseMove, gamma_pixel(256, 500));
  mouse(QEvent::MouseButtonRelease, gamma_pixel(256, 500));
  mouse(QEvent::MouseMove, gamma_pixel(256, 100));
  EXPECT_EQ(point(14, "G")->value(), 500) << "let go";

  auto* chart = user_.find<GammaChartView>("Gamma curves");
  EXPECT_EQ(chart->readout(), "Point 14 at 256:  G = 500");
  key(Qt::Key_Right);
  key(Qt::Key_Up);
  EXPECT_EQ(point(15, "G")->value(), 1);
  EXPECT_EQ(chart->readout(), "Point 15 at 320:  G = 1");
  EXPECT_TRUE(fake_.sender.writes.empty()) << "nothing is sent before Apply";
}

TEST_F(GammaPage, AnyArrowChoosesAPointWhereNoneIsChosen) {
  auto* chart = user_.find<GammaChartView>("Gamma curves");
  key(Qt::Key_Up);
  EXPECT_TRUE(chart->readout().startsWith("Point 1 at 0:"));
  EXPECT_EQ(point(1, "R")->value(), 0);
  key(Qt::Key_Up);
  EXPECT_EQ(point(1, "R")->value(), 1);
}

TEST_F(GammaPage, MarksWhatAnEditDoesNotTake) {
  QSpinBox* box = point(3, "G");
  auto* edit = box->findChild<QLineEdit*>();
  const auto type = [box](char digit) {
    QKeyEvent event(QEvent::KeyPress, digit, Qt::NoModifier, QString(QChar(digit)));
    QApplication::sendEvent(box, &event);
  };
  const auto marked = [edit] { return edit->palette().color(QPalette::Text) == QColor(Qt::white); };
  box->selectAll();
  for (char digit : {'2', '0', '4'}) type(digit);
  EXPECT_FALSE(marked());
  type('8');
  EXPECT_EQ(edit->text(), "204");
  EXPECT_TRUE(marked());
  box->setValue(7);
  EXPECT_FALSE(marked());
}

}  // namespace
}  // namespace qv5123
