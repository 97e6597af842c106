#include "tuning/ui/dlg_isp_awb.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include "support/chart_driver.h"
#include "support/page_bench.h"

namespace qv5123 {
namespace {

using AwbPage = test::PageBench<CDlgIspAwb>;

TEST_F(AwbPage, SetLimitsALineThatIsMarkedUntilThen) {
  user_.expect_named_controls();
  auto* slope = user_.find<QSpinBox>("A Slope");
  const auto marked = [slope] {
    return slope->findChild<QLineEdit*>()->palette().base() != slope->palette().base();
  };
  slope->findChild<QLineEdit*>()->setText("900");
  EXPECT_TRUE(marked()) << "before it is taken";
  user_.click("A S");
  EXPECT_EQ(slope->value(), 800);
  EXPECT_FALSE(marked());
  user_.type("A Slope", -801);
  EXPECT_TRUE(marked());
  user_.click("B S");
  EXPECT_TRUE(marked()) << "another line's button changes nothing here";
  EXPECT_EQ(slope->value(), -801);
  EXPECT_EQ(wire(), "@fa01*@0d03*@0d20*@0e00*@0e00*@fa00*@fa01*@0f00*@0f00*@1000*@1000*@fa00*");
  EXPECT_EQ(user_.find<QSpinBox>("F Intercept")->toolTip(), "-32768..32767 (256 is 1.0), register 0x16");
}

TEST_F(AwbPage, KeysSendWhatTheySayAndArrowsRepeat) {
  for (const char* key : {"None", "Set", "Check", "UP", "DOWN", "LEFT", "RIGHT"}) user_.click(key);
  EXPECT_EQ(wire(), "@3200*@3300*@3400*@0100*@0101*@0102*@0103*");
  EXPECT_TRUE(user_.find<QAbstractButton>("UP")->autoRepeat());
}

TEST_F(AwbPage, APatchChosenByAnAssistiveToolIsTheOneThatIsMeasured) {
  answer_picker();
  user_.toggle("4100K");
  user_.click("GET COLOR");
  const auto caption = [this] { return user_.find<QAbstractButton>("GET COLOR")->text(); };
  EXPECT_EQ(caption(), "GET COLOR ...");
  wire();
  EXPECT_EQ(caption(), "GET COLOR");
  EXPECT_EQ(user_.number("4100K R"), 10);
}

TEST_F(AwbPage, TheChartFollowsTheEditsAndNamesItsPatches) {
  page_.show();
  user_.type("Green R", 300);
  const auto place = chroma_over_luma({255, 0, 0});
  const auto& chart = *page_.findChild<AwbChartView*>();
  // The patch is beyond the frame's upper edge, where an arrow stands for it.
  const QPointF at = chart.to_widget({193 * place->x / place->y, -193});
  EXPECT_EQ(chart.text_at(at), "Green: R 300, G 0, B 0\nCb/Y = -0.566, Cr/Y = 1.684");
  EXPECT_EQ(chart.text_at(at + QPointF(40, 0)), "");
  QTest::keyClick(page_.findChild<AwbChartView*>(), Qt::Key_Right);
  EXPECT_EQ(chart.accessibleDescription(), "Green: R 300, G 0, B 0\nCb/Y = -0.566, Cr/Y = 1.684");
  EXPECT_TRUE(chart.numbers().contains("Green\t300\t0\t0\t-0.566\t1.684\n"));
}

TEST(AwbChart, EnlargesHidesLinesAndIsCopied) {
  AwbChartView chart;
  chart.resize(420, 420);
  // Line F lies flat at y = 50, the others on the axes.
  AwbValues values;
  values.words = {};
  values.words[9] = -64;
  chart.show_values(values);
  const ChartPoint on_f{-100, 50};
  const auto drawn = [&] { return chart.grab().toImage().pixelColor(chart.to_widget(on_f).toPoint()); };
  const QPointF at = chart.to_widget(on_f);
  test::enlarge(&chart, at);
  EXPECT_NEAR(chart.to_widget(on_f).x(), at.x(), 1) << "what is under the mouse stays there";
  EXPECT_GT(chart.to_widget({0, 50}).x() - at.x(), 150);
  const QImage unframed = chart.grab().toImage();
  chart.show();
  QApplication::setActiveWindow(&chart);
  QTest::mouseClick(&chart, Qt::LeftButton, {}, QPoint(2, 2));
  EXPECT_TRUE(chart.grab().toImage() != unframed) << "it has the keys";
  QTest::keyClick(&chart, Qt::Key_0);
  EXPECT_EQ(chart.to_widget(on_f), at) << "all of it is shown again";
  QTest::keyClick(&chart, Qt::Key_Plus);
  EXPECT_NEAR(chart.to_widget(on_f).x() - at.x(), (at.x() - 210) / 4, 1) << "around the middle";
  QTest::keyClick(&chart, Qt::Key_Minus);
  EXPECT_EQ(chart.to_widget(on_f), at);
  EXPECT_EQ(drawn(), QColor(Qt::red));
  test::mouse(&chart, QEvent::MouseButtonPress, chart.legend_place(5).center());
  EXPECT_NE(drawn(), QColor(Qt::red));
  QTest::keyClick(&chart, Qt::Key_6);
  EXPECT_EQ(drawn(), QColor(Qt::red)) << "the sixth name";
  QApplication::clipboard()->clear();
  QTest::keyClick(&chart, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), chart.numbers());

  QHelpEvent beside(QEvent::ToolTip, {2, 2}, chart.mapToGlobal(QPoint(2, 2)));
  QApplication::sendEvent(&chart, &beside);
  EXPECT_EQ(QToolTip::text(), chart.toolTip());
}

}  // namespace
}  // namespace qv5123
