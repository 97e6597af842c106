#include "registers/ui/multiline_list.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

namespace qv5123 {
namespace {

class MultilineListTest : public testing::Test {
 protected:
  MultilineListTest() {
    list_.set_size(3, 5);
    list_.resize(400, 400);
    list_.show();
    lay_out();
  }
  // The layout is put off once, and so is what the scroll bars make of it.
  static void lay_out() {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  }
  int line() const { return list_.fontMetrics().height(); }
  void press(int y) {
    QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, QPoint(5, y));
    lay_out();
  }

  CMultilineList list_;
};

TEST_F(MultilineListTest, ARowIsAsTallAsItsTallestCell) {
  list_.set_cell_text(0, 1, "one\r\ntwo");
  EXPECT_EQ(list_.row_height(1), 2 * line() + 5);
  list_.set_cell_text(1, 2, "words that are wrapped where their column ends & go on");
  EXPECT_GT(list_.row_height(2), 2 * line());
  list_.set_column_width(1, 1000);
  EXPECT_EQ(list_.row_height(2), line() + 5);
}

TEST_F(MultilineListTest, LinesScrollToRowBoundaries) {
  list_.set_size(3, 50);
  list_.set_cell_text(0, 1, "a\r\nb\r\nc");
  lay_out();
  QScrollBar* bar = list_.verticalScrollBar();
  const int row = line() + 5;
  bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_EQ(bar->value(), row);
  bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_EQ(bar->value(), row + 3 * line() + 5);
  bar->setValue(row + 7);
  bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
  EXPECT_EQ(bar->value(), row);
  // The wheel goes by lines too, once its turns make a whole one.
  for (const auto& [delta, value] : {std::pair{120, 0}, {-60, 0}, {-60, row}}) {
    QWheelEvent event(QPointF(5, 5), list_.mapToGlobal(QPointF(5, 5)), {}, {0, delta}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(list_.viewport(), &event);
    EXPECT_EQ(bar->value(), value);
  }
}

TEST_F(MultilineListTest, APressSelectsTheRowAndShowsItWhole) {
  QSignalSpy pressed(&list_, &CMultilineList::row_pressed);
  list_.set_cell_text(0, 1, "a\r\nb\r\nc");
  lay_out();
  press(line() + 5 + 2 * line());
  EXPECT_EQ(list_.selected_row(), 1);
  ASSERT_EQ(pressed.size(), 1);
  EXPECT_EQ(pressed[0][0].toInt(), 1);
  press(390 - list_.horizontalHeader()->height());
  EXPECT_EQ(list_.selected_row(), -1) << "below the last row";

  list_.set_size(3, 50);
  lay_out();
  list_.verticalScrollBar()->setValue(3);
  press(list_.viewport()->height() - 1);
  EXPECT_EQ(list_.row_at(list_.viewport()->height() - 1), list_.selected_row());
  EXPECT_NE(list_.row_at(list_.viewport()->height()), list_.selected_row()) << "its end is in view";
}

}  // namespace
}  // namespace qv5123
