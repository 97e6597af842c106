#include "base/ui/number_edit.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

namespace qv5123 {
namespace {

QLineEdit* line(const QAbstractSpinBox& edit) {
  return edit.findChild<QLineEdit*>();
}

void type(const QAbstractSpinBox& edit, const char* text) {
  line(edit)->selectAll();
  QTest::keyClicks(line(edit), text);
}

bool marked(const QAbstractSpinBox& edit) {
  return line(edit)->palette().color(QPalette::Text) == Qt::white;
}

void paste(const QAbstractSpinBox& edit, const QString& text) {
  QGuiApplication::clipboard()->setText(text);
  line(edit)->selectAll();
  line(edit)->paste();
}

/// As assistive tools replace all that stands in an edit.
void set_contents(QSpinBox& edit, const QString& text) {
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&edit);
  interface->editableTextInterface()->replaceText(0, static_cast<int>(line(edit)->text().size()), text);
  QTest::qWait(0);
}

TEST(NumberEdit, WhatIsOutOfRangeBecomesTheNearestEnd) {
  NumberEdit edit(0, 50);
  std::vector<int> told;
  QObject::connect(&edit, &QSpinBox::valueChanged, &edit, [&](int value) { told.push_back(value); });
  edit.show();
  type(edit, "51");
  EXPECT_EQ(line(edit)->text(), "51") << "let in, and marked";
  EXPECT_TRUE(marked(edit));
  EXPECT_TRUE(told.empty()) << "not before it is taken";
  QTest::keyClick(line(edit), Qt::Key_Return);
  EXPECT_EQ(edit.value(), 50);
  EXPECT_FALSE(marked(edit));
  // The same text again changes no value, and still must not stay.
  type(edit, "5000");
  edit.interpretText();
  QTest::qWait(0);
  EXPECT_EQ(line(edit)->text(), "50");
  EXPECT_FALSE(marked(edit));
  type(edit, "-3");
  edit.interpretText();
  EXPECT_EQ(told, (std::vector<int>{50, 0}));
}

TEST(NumberEdit, HexDigitsStandBehindTheirPrefix) {
  NumberEdit edit(0, 0x10FFFF);
  edit.setDisplayIntegerBase(16);
  edit.setPrefix("0x");
  edit.setValue(0x20);
  edit.show();
  EXPECT_EQ(line(edit)->text(), "0x20");
  type(edit, "4e");
  edit.interpretText();
  EXPECT_EQ(edit.value(), 0x4E);
  set_contents(edit, "0x110000");
  EXPECT_EQ(line(edit)->text(), "0x10FFFF");
  EXPECT_TRUE(edit.accessibleDescription().isEmpty());
  type(edit, "FFFFFF");
  EXPECT_TRUE(edit.accessibleDescription().startsWith("Not taken as it stands: "))
      << "so that it is heard, too";
}

TEST(NumberEdit, PastedTextIsTakenOrRefusedAsAWhole) {
  NumberEdit edit(0, 4095);
  edit.show();
  edit.setValue(7);
  for (const char* text : {"0x12", "1e3", "1 000", "1,5", "twelve"}) {
    paste(edit, text);
    EXPECT_EQ(line(edit)->text(), "7") << text;
  }
  for (const char* text : {" 12 ", "+12", "0012"}) {
    edit.setValue(7);
    paste(edit, text);
    edit.interpretText();
    EXPECT_EQ(edit.value(), 12) << text;
    EXPECT_EQ(line(edit)->text(), "12") << text;
  }
}

TEST(NumberEdit, DigitsStayLatinInEveryLanguage) {
  const QLocale before;
  for (const QLocale::Language language : {QLocale::Arabic, QLocale::Persian, QLocale::Bengali}) {
    QLocale::setDefault(QLocale(language));
    NumberEdit whole(-2000, 5000);
    RealEdit real(0, 5000, 2);
    whole.setValue(-1234);
    real.setValue(1234.5);
    EXPECT_EQ(line(whole)->text(), "-1234");
    EXPECT_EQ(line(real)->text(), "1234.50");
    set_contents(whole, QString::fromUtf8("\u0664\u0662"));
    EXPECT_EQ(whole.value(), -1234) << "not taken for a number of other digits";
  }
  QLocale::setDefault(before);
}

TEST(RealEdit, ADecimalCommaIsAPoint) {
  RealEdit edit(0, 100, 4);
  edit.show();
  for (const char* text : {"0,45", ".45", "0.45"}) {
    edit.setValue(1);
    type(edit, text);
    edit.interpretText();
    EXPECT_DOUBLE_EQ(edit.value(), 0.45) << text;
    EXPECT_EQ(line(edit)->text(), "0.4500");
  }
  type(edit, "450");
  edit.interpretText();
  EXPECT_DOUBLE_EQ(edit.value(), 100);
  paste(edit, "1e1");
  EXPECT_EQ(line(edit)->text(), "100.0000");
}

}  // namespace
}  // namespace qv5123
