#include "app/ui/typed_text.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

namespace qv5123 {
namespace {

TEST(TypedText, IsWhatNobodyHasTakenYet) {
  QWidget window;
  auto* edit = new QLineEdit("12", &window);
  edit->setAccessibleName("Value");
  auto* target = new QSpinBox(&window);
  target->setAccessibleName("AE Target");
  TypedText typed(&window);
  window.show();
  window.activateWindow();
  edit->setFocus();
  QApplication::processEvents();
  EXPECT_EQ(typed.text(), "") << "what stood there before";
  QTest::keyClicks(edit, "3");
  EXPECT_EQ(typed.text(), "Value: 123");
  QTest::keyClick(edit, Qt::Key_Return);
  EXPECT_EQ(typed.text(), "");
  QTest::keyClicks(edit, "4");
  typed.mark_taken();
  EXPECT_EQ(typed.text(), "") << "saved";
  target->setFocus();
  QTest::keyClicks(target, "7");
  EXPECT_EQ(typed.text().substr(0, 12), "AE Target: 7");
  target->clearFocus();
  EXPECT_EQ(typed.text(), "");
}

}  // namespace
}  // namespace qv5123
