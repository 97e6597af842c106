#include "tuning/ui/dlg_isp_gamma_rgb.h"

#include <gtest/gtest.h>

#include <QKeyEvent>

#include "support/chart_driver.h"
#include "support/page_bench.h"

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

TEST_F(GammaPage, ShowsAndSendsWhatIsTypedAndClicked) {
  user_.click("Channel G");
  user_.find<QDoubleSpinBox>("Gamma Value")->setValue(1);
  user_.click("Standard ITU.709 Gamma");
  user_.click("Standard ITU.709 Gamma");
  user_.click("Gamma Value Set");
  EXPECT_TRUE(user_.find<QPlainTextEdit>("Messages")->toPlainText().startsWith("G: 0, 0, 5, 13,"));
  point(1, "G")->setValue(0x123);
  user_.click("Apply");
  EXPECT_TRUE(wire(2000).starts_with("@0401*@0423*"));
  EXPECT_TRUE(user_.find<QPushButton>("Apply")->toolTip().endsWith("registers 0x03, 0x04, 0x05"));

  host_.doc.user_data.mark_loaded();
  host_.doc.user_data.set_entry(44, 2);
  user_.click("Load <- File");
  EXPECT_TRUE(user_.checked("Channel R"));
  EXPECT_EQ(point(1, "G")->value(), 0);
  user_.click("Channel G");
  user_.click("File/Flash Save");
  EXPECT_EQ(host_.last_status(), "Gamma Data Saving...");
  const std::string saved = wire(12'000);
  EXPECT_EQ(saved.size(), (2u + 2 * 66 + 1 + 2) * 6);
  EXPECT_TRUE(saved.starts_with("@f901*@fa01*@0300*@0300*"));
  EXPECT_TRUE(saved.ends_with("@0500*@0500*@0602*@fa00*@f900*")) << "the selection of the file";
  EXPECT_EQ(host_.last_status(), "Gamma Save Done.");
}

TEST_F(GammaPage, FrontControlsHideBehindMoreAndTheRadioFallsBack) {
  auto* radio = user_.find<QAbstractButton>("Channel Front Gamma");
  user_.toggle("More");
  EXPECT_FALSE(radio->isHidden());
  user_.toggle("Channel B");
  user_.click("Gamma Value Set");
  EXPECT_EQ(host_.last_status(), "Gamma values calculated: B");
  user_.toggle("Channel Front Gamma");
  EXPECT_TRUE(user_.checked("Channel RGB"));
  user_.toggle("Standard ITU.709 Gamma");
  user_.click("Gamma Value Set");
  EXPECT_EQ(point(2, "B")->value(), 36) << "the linear start";
  EXPECT_EQ(point(2, "R")->value(), 36);
  user_.expect_named_controls();
}

TEST_F(GammaPage, DraggingAndKeysMovePoints) {
  auto* chart = user_.find<GammaChartView>("Gamma curves");
  for (const int value : {0, 1}) {
    key(Qt::Key_Up);
    EXPECT_TRUE(chart->readout().startsWith("Point 1 at 0:")) << "the first, where none was chosen";
    EXPECT_EQ(point(1, "R")->value(), value);
  }
  user_.click("Channel G");
  mouse(QEvent::MouseButtonPress, gamma_pixel(256, 0));
  mouse(QEvent::MouseMove, gamma_pixel(300, 400));
  EXPECT_EQ(point(14, "G")->value(), 400);
  EXPECT_EQ(point(14, "R")->value(), 0) << "not shown";
  mouse(QEvent::MouseMove, gamma_pixel(256, 500));
  mouse(QEvent::MouseButtonRelease, gamma_pixel(256, 500));
  mouse(QEvent::MouseMove, gamma_pixel(256, 100));
  EXPECT_EQ(point(14, "G")->value(), 500) << "let go";

  EXPECT_EQ(chart->readout(), "Point 14 at 256:  G = 500, slope 0.00") << "between its neighbours, both 0";
  key(Qt::Key_Right);
  key(Qt::Key_Up);
  EXPECT_EQ(point(15, "G")->value(), 1);
  EXPECT_EQ(chart->readout(), "Point 15 at 320:  G = 1, slope -3.91");
  EXPECT_TRUE(fake_.sender.writes.empty()) << "nothing is sent before Apply";
}

TEST_F(GammaPage, TheChartEnlargesHidesCurvesAndIsCopied) {
  auto* chart = user_.find<GammaChartView>("Gamma curves");
  chart->resize(600, 600);
  const QPointF at = chart->to_widget(gamma_pixel(256, 0));
  test::enlarge(chart, at);
  EXPECT_NEAR(chart->to_widget(gamma_pixel(256, 0)).x(), at.x(), 1) << "what is under the mouse stays there";
  EXPECT_GT(chart->to_widget(gamma_pixel(512, 0)).x() - at.x(), 190);
  chart->actions().last()->trigger();
  EXPECT_EQ(chart->to_widget(gamma_pixel(256, 0)), at) << "all of it is shown again";
  user_.click("Channel RGB");
  chart->grab();
  const QPointF name = chart->legend_place(GammaCurveId::green).center();
  test::mouse(chart, QEvent::MouseButtonPress, name);
  EXPECT_FALSE(chart->shows(GammaCurveId::green));
  EXPECT_TRUE(chart->shows(GammaCurveId::red));
  EXPECT_TRUE(test::copied(chart).startsWith("Input\tR\tG\tB\tFront"));
}

TEST(Charts, ColoursStandOutFromADarkPlot) {
  const QColor plot = chart_colours(QPalette(QColor(0x28, 0x28, 0x28))).plot;
  for (const QColor& colour : {QColor(Qt::red), QColor(Qt::green), QColor(Qt::blue), QColor(kGammaGridColour),
                               QColor(215, 0, 0), QColor(0, 150, 0), QColor(0, 0, 230)})
    EXPECT_GE(test::contrast(readable_on(plot, colour), plot), 3) << colour.name().toStdString();
}

TEST_F(GammaPage, TheChartAlsoHasTheCurvesOfFileAndChipWhereTheyDiffer) {
  auto* chart = user_.find<GammaChartView>("Gamma curves");
  TuningDesk& desk = page_.tuning_desk();
  std::vector<ValueMark> marks(desk.model().fields().size());
  const auto chip_has = [&](const char* curve, int value, int points) {
    for (std::size_t i = 0; i < marks.size(); ++i)
      if (desk.model().fields()[i].name.starts_with(curve) && points-- > 0) marks[i].chip = value;
    desk.show_marks(marks);
    return chart->numbers().section(u'\n', 0, 1).toStdString();
  };
  user_.click("Channel RGB");
  EXPECT_EQ(chip_has("r[", 7, 21), "Input\tR\tG\tB\tFront\n0\t0\t0\t0\t0") << "one point is not known";
  EXPECT_EQ(chip_has("g[", 0, 22), "Input\tR\tG\tB\tFront\n0\t0\t0\t0\t0") << "the same as the page's";
  EXPECT_EQ(chip_has("b[", 9, 22), "Input\tR\tG\tB\tFront\tB chip\n0\t0\t0\t0\t0\t9");
  host_.doc.user_data.mark_loaded();
  user_.click("Load <- File");
  user_.click("Channel RGB");
  point(1, "R")->setValue(5);
  chart->grab();
  EXPECT_TRUE(chart->numbers().startsWith("Input\tR\tG\tB\tFront\tR file\tB chip\n0\t5\t0\t0\t0\t0\t9\n"))
      << chart->numbers().toStdString();
  ASSERT_FALSE(chart->legend_place(GammaPlace::file).isEmpty());
  EXPECT_TRUE(chart->legend_place(GammaPlace::chip).right() < chart->width());

  // Away from the names; the chip's curve is a flat one at the bottom.
  const auto curves = [chart] {
    const QImage shot = chart->grab().toImage();
    return shot.copy(shot.width() / 5, shot.height() / 3, shot.width() / 5, shot.height());
  };
  const auto flip_chip = [chart] {
    test::mouse(chart, QEvent::MouseButtonPress, chart->legend_place(GammaPlace::chip).center());
  };
  const QImage both = curves();
  flip_chip();
  EXPECT_NE(curves(), both);
  flip_chip();
  EXPECT_EQ(curves(), both);
  test::enlarge(chart, {chart->width() / 2.0, chart->height() / 4.0});
  const QImage enlarged = curves();
  flip_chip();
  EXPECT_EQ(curves(), enlarged) << "it is beyond the edge";
}

}  // namespace
}  // namespace qv5123
