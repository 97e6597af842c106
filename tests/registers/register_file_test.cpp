#include "registers/register_file.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

RegEntry entry(int address, char write, int value, std::u16string name) {
  RegEntry e;
  e.address = address;
  e.write = write;
  e.value = value;
  e.name = std::move(name);
  return e;
}

TEST(RegisterFile, HoldsTheSavedRegistersThatWereRead) {
  RegDescription d;
  d.registers = {entry(0xFA2C, 'W', 0x0B, u"GAIN HIGH"), entry(0xF800, 'R', 1, u"read only"),
                 entry(0xF801, 'W', -1, u"never read"), entry(0xA5, 'W', 255, u"\u0141\u00E4")};
  EXPECT_EQ(register_file_text(d), "0xFA2C=0x0B //GAIN HIGH\r\n0x00A5=0xFF //\x41\xE4\r\n");
  d.registers = {entry(1, 'W', 2, std::u16string(300, u'n'))};
  EXPECT_EQ(register_file_text(d), "0x0001=0x02 //" + std::string(256, 'n') + "\r\n");
}

TEST(RegisterFile, SkipsAndCountsWhatDoesNotFit) {
  const RegisterFile file = RegisterFile::parse(
      "0xF800=0x1A //A B\r\n"
      "\r\n"
      "# a remark\r\n"
      "0xf801=0x2b //x\n"
      "0xF802=0x1\r\n"
      "0xF8031=0x11 //five digits\n"
      "0x=0x11 //none\n"
      "0xF804=0x123 //three\n"
      "  0x5=0x7//\n"
      "0xF806=0x08 //last line, no end");
  EXPECT_EQ(file.lines,
            (std::vector<RegisterFile::Line>{{0xF800, 0x1A}, {0xF801, 0x2B}, {5, 7}, {0xF806, 8}}));
  EXPECT_EQ(file.skipped, 5u);
  EXPECT_EQ(file.first_skipped, 3u);
}

}  // namespace
}  // namespace qv5123
