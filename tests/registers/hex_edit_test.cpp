#include "registers/hex_edit.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

using Result = HexEdit::KeyResult;

// Types each key where the one before left the caret.
void type(HexEdit& edit, int caret, std::string_view keys) {
  for (const char key : keys) {
    if (edit.press(static_cast<unsigned char>(key), caret) == Result::handled) caret = edit.caret();
  }
}

TEST(HexEdit, BackspaceAndDeleteLeaveZeros) {
  HexEdit edit = HexEdit::address_edit();
  edit.set_text(u"0x1234");
  EXPECT_EQ(edit.press(key::kBackspace, 6), Result::handled);
  EXPECT_EQ(edit.text(), u"0x1230");
  EXPECT_EQ(edit.caret(), 5);
  edit.press(key::kBackspace, 2);
  EXPECT_EQ(edit.text(), u"0x1230");
  EXPECT_EQ(edit.caret(), 2) << "the prefix stays and the caret with it";
  edit.press(key::kBackspace, 0);
  EXPECT_EQ(edit.caret(), 1);

  edit.press(key::kDelete, 3);
  EXPECT_EQ(edit.text(), u"0x1030");
  EXPECT_EQ(edit.caret(), 3);
  edit.press('.', 2);
  EXPECT_EQ(edit.text(), u"0x0030") << "'.' shares its code with Delete";
  edit.press(key::kDelete, 6);
  EXPECT_EQ(edit.text(), u"0x0030");
  EXPECT_EQ(edit.number(), 0x30);
}

TEST(HexEdit, ArrowsStepWithinTheLimits) {
  HexEdit value = HexEdit::value_edit();
  value.set_text(u"0xFE");
  value.press(key::kUp, 4);
  value.press('&', 4);
  EXPECT_EQ(value.text(), u"0xFF") << "'&' shares its code with the up arrow";
  value.press('(', 2);
  EXPECT_EQ(value.text(), u"0xFE");
  EXPECT_EQ(value.caret(), 3);

  HexEdit address = HexEdit::address_edit();
  for (const auto start : {u"0x0012", u"", u"12"}) {
    for (const int direction : {-1, 1}) {
      address.set_text(start);
      address.step(direction);
      EXPECT_EQ(address.text(), u"0xF800");
    }
  }
  address.set_text(u"0xFFFF");
  address.step(1);
  EXPECT_EQ(address.number(), 0xFFFF);
}

TEST(HexEdit, OtherKeysAreTheControlsOrNobodys) {
  EXPECT_EQ(HexEdit::value_edit().press('7', 4), Result::ignored) << "behind the last digit";
  EXPECT_EQ(HexEdit::value_edit().press('7', 0), Result::ignored) << "on the prefix";
  EXPECT_EQ(HexEdit::value_edit().press('x', 1), Result::handled);
  HexEdit value = HexEdit::value_edit();
  HexEdit address = HexEdit::address_edit();
  for (const int code : {9, 12, 34, 35, 36, 37, 39})
    EXPECT_EQ(address.press(code, 3), Result::standard) << code;
  EXPECT_EQ(value.press(key::kEnter, 3), Result::standard);
  EXPECT_EQ(address.press(key::kEnter, 3), Result::enter);
  for (const int code : {-1, 0, 3, 7, 10, 22, 27, 33, 45, int{'g'}, int{'w'}, int{'y'}, 0xE4, 0x10FFFF}) {
    EXPECT_EQ(value.press(code, 3), Result::ignored) << code;
  }
  EXPECT_EQ(value.text(), u"0x00");
}

TEST(HexEdit, AForeignTextTakesTheEditsFormWithTheNextKey) {
  HexEdit edit = HexEdit::address_edit();
  edit.set_text(u"0xf8001");
  EXPECT_EQ(edit.text(), u"0xf8001");
  EXPECT_EQ(edit.number(), 0xF800);
  edit.press('1', 5);
  EXPECT_EQ(edit.text(), u"0xF801");
  edit.set_text(u"5");
  EXPECT_EQ(edit.number(), -1);
  edit.press('2', 3);
  EXPECT_EQ(edit.text(), u"0x0200");
  edit.set_text(u"0xA5");
  edit.press('1', 5);
  EXPECT_EQ(edit.text(), u"0x00A1") << "the number that stood there, not 0xA500";
  edit.set_text(u"0xA5");
  edit.press(key::kDelete, 2);
  EXPECT_EQ(edit.number(), 0xA5);
  edit.set_text(u"");
  type(edit, 0, "fa");
  EXPECT_EQ(edit.text(), u"0xFA00") << "an emptied edit can be typed into";
}

TEST(BitFieldData, ShowsTheBitsOfTheRange) {
  EXPECT_EQ(bit_field_data(u"[7:0]", 0xFF), " 255");
  EXPECT_EQ(bit_field_data(u"[15:12]", 0xFF), " 0");
  EXPECT_EQ(bit_field_data(u"bits [7:4]", 0xA5), " 1") << "seven characters count: \"bits [7\"";
  for (const auto none : {u"", u" ", u"7:4"}) EXPECT_EQ(bit_field_data(none, 0xA5), "");
  for (const auto odd : {u"[", u"[4:7]", u"[99999", u"[:9999", u"[-1:-2]"}) bit_field_data(odd, 0xFF);
  EXPECT_EQ(bit_field_data(u"[4:7]", 0xFF), " 0");
  EXPECT_EQ(bit_field_data(u"[99:4]", 0xA5), " 10");
  EXPECT_EQ(bit_field_data(u"[ 7: 4]", 0xA5), " 10");
}

}  // namespace
}  // namespace qv5123
