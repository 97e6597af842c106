#include "tuning/raw_access.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tuning/bit_editor.h"
#include "tuning/register_script.h"

namespace qv5123 {
namespace {

TEST(RawAccess, FieldsAreReadByTheirLength) {
  EXPECT_EQ(byte_of_field("7"), 0x70);
  EXPECT_EQ(byte_of_field(""), 0);
  EXPECT_EQ(address_of_field("9G2"), 0x902);
  EXPECT_EQ(address_of_field("F9225"), 0xF92);
  EXPECT_EQ(word_of_field("123"), 0x123);
  EXPECT_EQ(word_of_field("bEeF"), 0xBEEF);
  EXPECT_EQ(word_of_field("12345"), 0);
  EXPECT_EQ(word_of_field("\xC3\xA9"
                          "12\xE2\x82\xAC"),
            0x0120)
      << "a character counts once, however it is coded";
}

TEST(RawAccess, FieldsThatWouldBeMisreadAreTold) {
  for (const char* right : {"000", "a2C", "F92"})
    EXPECT_TRUE(reads_as_typed(HexForm::address, right)) << right;
  for (const char* wrong : {"", "A2", "F1A2", "0x1A2", "9G2", "12\xC3\xA9", " 12"})
    EXPECT_FALSE(reads_as_typed(HexForm::address, wrong)) << wrong;
  for (const char* right : {"00", "123", "bEeF"}) EXPECT_TRUE(reads_as_typed(HexForm::word, right)) << right;
  for (const char* wrong : {"", "5", "12345", "0x12", "-5"})
    EXPECT_FALSE(reads_as_typed(HexForm::word, wrong)) << wrong;
  EXPECT_TRUE(reads_as_typed(HexForm::byte, "3f"));
  EXPECT_FALSE(reads_as_typed(HexForm::byte, "3"));
  EXPECT_FALSE(reads_as_typed(HexForm::byte, "3F0"));
}

TEST(RawAccess, AnswersAreShownAsLines) {
  EXPECT_EQ(answer_text(Access::isp_word, 0x922, "0aBc"), "0xF922 = 0x0ABC\r\n");
  EXPECT_EQ(answer_text(Access::isp_word, 0x922, "123"), "");
  EXPECT_EQ(answer_text(Access::isp_byte, 0x922, "122"), "") << "which of them was doubled?";
  EXPECT_FALSE(answer_field(Access::isp_byte, "1x"));
  EXPECT_EQ(answer_field(Access::isp_byte, "00ff0c"), "0C");
  EXPECT_EQ(dump_text(0x0FE, 0x100, "010203"), "0xF0FE = 0x01\r\n0xF0FF = 0x02\r\n0xF100 = 0x03\r\n");
  EXPECT_TRUE(dump_text(0x100, 0x1F9, std::string(500, '1')).ends_with("\r\n0xF1F9 = 0x11\r\n"));
}

TEST(ServiceGesture, OnlyTheWholeSequenceAtItsAddressReveals) {
  ServiceGesture gesture;
  const auto play = [&gesture] {
    for (const auto& [bit, set] :
         {std::pair(7, true), {0, true}, {7, false}, {3, true}, {0, false}, {3, false}})
      gesture.click(bit, set);
  };
  gesture.click(7, true);
  play();
  EXPECT_TRUE(gesture.get_info(0x5C1)) << "its first click may come twice";
  EXPECT_FALSE(gesture.get_info(0x5C1));
  play();
  EXPECT_FALSE(gesture.get_info(0x5C0));
  play();
  gesture.click(1, true);
  EXPECT_FALSE(gesture.get_info(0x5C1));
}

/// What a script sends, tick by tick; "-" for a tick that sends nothing.
std::string played(const std::string& text) {
  RegisterScript script(std::make_unique<std::istringstream>(text));
  std::string sent;
  for (int tick = 0; tick < 20; ++tick) {
    const RegisterScript::Step step = script.tick();
    if (step.finished) return sent;
    sent += step.batch.empty() ? "-" : frames(step.batch);
  }
  return sent + " and no end";
}

TEST(RegisterScript, WritesALineATick) {
  EXPECT_EQ(played("1A2 3F remark\n\r\n\n0bc=0D"), "@9201*@92a2*@933f*--@9200*@92bc*@930d*");
  EXPECT_EQ(played(std::string("1\0"
                               "2?zF",
                               6)),
            "@9201*@9202*@930f*");
}

TEST(RegisterScript, ALastLineBreakRepeatsTheDataAtAddress0) {
  const std::string once = "@9201*@92a2*@933f*", repeated = "@9200*@9200*@933f*";
  EXPECT_EQ(played("1A2,3F\r\n"), once + repeated);
  EXPECT_EQ(played("1A2,3F\n\n"), once + "--")
      << "a blank last line is skipped instead, once more at the end";
}

TEST(RegisterScript, LinesLeaveTheirRestBehind) {
  EXPECT_EQ(played("1A2,3F\n456"), "@9201*@92a2*@933f*@9204*@9256*@933f*");
  const std::string longest = "001,11" + std::string(93, ' ');
  EXPECT_EQ(played(longest + "002,22"), "@9200*@9201*@9311*@9200*@9202*@9322*");
}

}  // namespace
}  // namespace qv5123
