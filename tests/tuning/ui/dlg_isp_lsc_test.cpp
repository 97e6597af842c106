#include "tuning/ui/dlg_isp_lsc.h"

#include <gtest/gtest.h>

#include "support/chart_driver.h"
#include "support/lens_chip.h"
#include "support/page_bench.h"
#include "tuning/ui/lens_field_view.h"

namespace qv5123 {
namespace {

const QString kParameters[] = {"Parameter-1 RED", "Parameter-1 GREEN", "Parameter-1 BLUE",
                               "Parameter-2 RED", "Parameter-2 GREEN", "Parameter-2 BLUE"};

class LensPage : public test::PageBench<CDlgIspLSC> {
 protected:
  std::vector<int> parameters() const {
    std::vector<int> values;
    for (const QString& name : kParameters) values.push_back(user_.number(name));
    return values;
  }
  bool enabled(const char* name) const { return user_.find<QPushButton>(name)->isEnabled(); }
  QString log() const { return user_.find<QPlainTextEdit>("Log")->toPlainText(); }
};

TEST_F(LensPage, TheKeysWaitForTheSwitchAndSendTheCursor) {
  test::answer_lens_reads(fake_);
  EXPECT_EQ(user_.find<QWidget>("Enable Color Picker")->toolTip().toStdString(),
            "Shows the cursor in the picture and stops AE and AWB meanwhile, ISP registers 0xA10, 0xA20, "
            "0xA29, registers 0xA0, 0xA1");
  user_.click("Enable Color Picker");
  EXPECT_FALSE(enabled("LEFT")) << "not before the chip has followed";
  wire(3000);
  EXPECT_TRUE(enabled("LEFT"));
  EXPECT_TRUE(user_.find<QPushButton>("LEFT")->autoRepeat());
  user_.choose("Move Step", 7);
  user_.click("LEFT");
  user_.type("Y Pos", 10);
  user_.click("UP");
  EXPECT_EQ(wire(),
            "@920c*@9238*@9303*@920c*@9239*@9340*@920c*@923a*@9300*@920c*@923b*@930a*"
            "@920c*@923a*@9300*@920c*@923b*@9300*");
  user_.click("Enable Color Picker");
  EXPECT_FALSE(enabled("LEFT"));
  wire(3000);
  for (const char* box : {"NTSC", "PAL", "PAL"}) user_.click(box);
  EXPECT_FALSE(user_.checked("NTSC"));
  EXPECT_EQ(wire(), "@bd02*@bd01*@bd00*");
}

TEST_F(LensPage, WhatIsTypedDuringASwitchIsSentAfterIt) {
  test::answer_lens_reads(fake_);
  user_.type("X Pos", 1);
  user_.click("Enable Color Picker");
  fake_.advance(900);  // into the sending of the position
  user_.type("X Pos", 0x201);
  user_.type("X Pos", 0x302);
  fake_.advance(3000);
  EXPECT_TRUE(fake_.sender.wire().ends_with(
      "@920c*@9238*@9300*@920c*@9239*@9301*@920c*@9238*@9303*@920c*@9239*@9302*"));
}

TEST_F(LensPage, ACalibrationShowsWhatItReadsAndItsChartIsReadByKeyEnlargedAndCopied) {
  test::answer_lens_reads(fake_);
  // The readings are whole counts: Parameter-2 comes out a little below 0, which is asked about.
  host_.user.answers = {Answer::yes};
  user_.click("Enable Color Picker");
  fake_.advance(3000);
  user_.click("CALIBRATION");
  fake_.advance(10000);
  EXPECT_FALSE(enabled("CALIBRATION"));
  EXPECT_TRUE(log().startsWith("X pos: 16 \tR=216\tG=180\tB=144\nX pos: 272 \t"));
  fake_.advance(60000);
  EXPECT_TRUE(log().contains("Center horizontal pos: 9"));
  EXPECT_FALSE(user_.checked("Enable Color Picker"));
  auto* chart = user_.find<LensChartView>("Lens shading chart");
  chart->resize(600, 400);
  const auto press = [chart](Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(chart, &event);
    return chart->readout();
  };
  EXPECT_TRUE(press(Qt::Key_Right).startsWith("X 16:   R 216"));
  EXPECT_NE(press(Qt::Key_Right), press(Qt::Key_Left));
  EXPECT_TRUE(test::copied(chart).startsWith(
      "X\tR\tG\tB\tR corrected\tG corrected\tB corrected\n16\t216\t180\t144\t"));
  const QPointF at = chart->to_widget(960, 128);
  test::enlarge(chart, at);
  EXPECT_NEAR(chart->to_widget(960, 128).x(), at.x(), 1);
  EXPECT_GT(chart->to_widget(1160, 128).x() - at.x(), 70);
  chart->actions().last()->trigger();
  EXPECT_EQ(chart->to_widget(960, 128), at);
  // A name that is clicked takes its curve away.
  const auto all = chart->grab().toImage();
  test::mouse(chart, QEvent::MouseButtonPress, chart->legend_place(1).center());
  EXPECT_NE(chart->grab().toImage(), all);
  user_.type("Correction Ratio", 0);
  EXPECT_EQ(parameters(), std::vector<int>(6, 0));
}

TEST_F(LensPage, LoadsAndSaves) {
  user_.expect_named_controls();
  user_.click("Load <- ISP");
  answer_load("ffff02030405060708090aFFff");
  EXPECT_EQ(parameters(), (std::vector<int>{4095, 0x203, 0x405, 0x607, 0x809, 0xAFF}));
  wire();
  user_.click("Parameter-2 S");
  EXPECT_EQ(wire(), "@6506*@6507*@6508*@6509*@650a*@65ff*");
  user_.click("File/Flash Save");
  fake_.advance(2000);
  EXPECT_EQ(host_.last_status(), "File save done");
  EXPECT_EQ(host_.written.word(450), 0xAFF);
}

TEST_F(LensPage, TheFieldIsCopiedAsNumbersAndSpreadFromItsLeastToItsMost) {
  auto* view = user_.find<LensFieldView>("Ripple of the whole picture");
  LensField field(45, PerColour{1, 2, 3});
  field[9] = {10, 20, 30};
  view->show_field(field);
  user_.expect_named_controls();
  EXPECT_EQ(test::copied(view), view->numbers());
  EXPECT_EQ(view->numbers().section(u'\n', 0, 1), "Column\tRow\tRed\tGreen\tBlue\n1\t1\t1\t2\t3");
  EXPECT_EQ(view->numbers().section(u'\n', 10, 10), "1\t2\t10\t20\t30") << "the second row";

  field.assign(45, PerColour{203, 203, 203});
  field.front() = {200, 200, 200};
  LensFieldView alone;
  alone.show_field({});
  alone.grab();  // a check that has only begun
  alone.resize(600, 110);
  alone.show_field(field);
  const QImage drawn = alone.grab().toImage();
  EXPECT_GT(drawn.pixelColor(100, 60).value() - drawn.pixelColor(5, 25).value(), 100);
}

}  // namespace
}  // namespace qv5123
