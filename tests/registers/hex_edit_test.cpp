#include "registers/hex_edit.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

using Result = HexEdit::KeyResult;

TEST(HexEdit, BackspaceAndDeleteLeaveZerosAndThePrefix) {
  const struct {
    int key, caret;
    std::u16string text;
    int caret_after;
  } presses[] = {{key::kBackspace, 6, u"0x1230", 5},
                 {key::kBackspace, 2, u"0x1230", 2},
                 {key::kBackspace, 0, u"0x1230", 1},
                 {key::kDelete, 3, u"0x1030", 3},
                 {'.', 2, u"0x0030", 2},  // it shares its code with Delete
                 {key::kDelete, 6, u"0x0030", 6}};
  HexEdit edit = HexEdit::address_edit();
  edit.set_text(u"0x1234");
  for (const auto& press : presses) {
    edit.press(press.key, press.caret);
    EXPECT_EQ(edit.text(), press.text);
    EXPECT_EQ(edit.caret(), press.caret_after);
  }
}

TEST(HexEdit, ArrowsStepWithinTheLimits) {
  HexEdit value = HexEdit::value_edit();
  value.set_text(u"0xFE");
  value.press(key::kUp, 4);
  value.press('&', 4);
  EXPECT_EQ(value.text(), u"0xFF") << "'&' shares its code with the up arrow";
  value.press('(', 2);
  EXPECT_EQ(value.text(), u"0xFE");
  HexEdit address = HexEdit::address_edit();
  address.set_text(u"12");
  address.step(1);
  EXPECT_EQ(address.text(), u"0xF800");
  address.set_text(u"0xFFFF");
  address.step(1);
  EXPECT_EQ(address.number(), 0xFFFF);
}

TEST(HexEdit, OtherKeysAreTheControlsOrNobodys) {
  HexEdit value = HexEdit::value_edit();
  HexEdit address = HexEdit::address_edit();
  EXPECT_EQ(value.press('7', 4), Result::ignored) << "behind the last digit";
  EXPECT_EQ(value.press('7', 0), Result::ignored) << "on the prefix";
  for (const int code : {9, 12, 34, 35, 36, 37, 39})
    EXPECT_EQ(address.press(code, 3), Result::standard) << code;
  EXPECT_EQ(value.press(key::kEnter, 3), Result::standard);
  EXPECT_EQ(address.press(key::kEnter, 3), Result::enter);
  for (const int code : {-1, 0, 3, 27, 45, int{'g'}, 0xE4, 0x10FFFF})
    EXPECT_EQ(value.press(code, 3), Result::ignored) << code;
  EXPECT_EQ(value.text(), u"0x00");
}

TEST(HexEdit, AForeignTextTakesTheEditsFormWithTheNextKey) {
  const struct {
    std::u16string text;
    int number;
    int key, caret;
    std::u16string text_after;
  } cases[] = {{u"0xf8001", 0xF800, '1', 5, u"0xF801"},
               {u"5", -1, '2', 3, u"0x0200"},
               {u"0xA5", 0xA5, '1', 5, u"0x00A1"},  // the number that stood there, not 0xA500
               {u"", -1, 'f', 2, u"0xF000"}};
  for (const auto& foreign : cases) {
    HexEdit edit = HexEdit::address_edit();
    edit.set_text(foreign.text);
    EXPECT_EQ(edit.text(), foreign.text);
    EXPECT_EQ(edit.number(), foreign.number);
    edit.press(foreign.key, foreign.caret);
    EXPECT_EQ(edit.text(), foreign.text_after);
  }
}

TEST(BitFieldData, ShowsTheBitsOfTheRange) {
  EXPECT_EQ(bit_field_data(u"[7:0]", 0xFF), " 255");
  EXPECT_EQ(bit_field_data(u"[15:12]", 0xFF), " 0");
  EXPECT_EQ(bit_field_data(u"bits [7:4]", 0xA5), " 1") << "seven characters count: \"bits [7\"";
  EXPECT_EQ(bit_field_data(u"7:4", 0xA5), "");
  for (const auto odd : {u"[", u"[99999", u"[:9999", u"[-1:-2]"}) bit_field_data(odd, 0xFF);
  EXPECT_EQ(bit_field_data(u"[4:7]", 0xFF), " 0");
  EXPECT_EQ(bit_field_data(u"[99:4]", 0xA5), " 10");
  EXPECT_EQ(with_bit_field(u"[6:4]", 0xFF, 2), 0xAF);
  EXPECT_EQ(with_bit_field(u"[0]", 0xA4, 9), 0xA5) << "the nearest that fits";
  EXPECT_EQ(with_bit_field(u"[99:4]", 0x0F, 3), 0x3F);
  for (const auto odd : {u"7:4", u"[15:12]", u"[4:7]"}) EXPECT_FALSE(with_bit_field(odd, 0xFF, 0));
}

}  // namespace
}  // namespace qv5123
