#include "registers/register_file.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

TEST(RegisterFile, SkipsAndCountsWhatDoesNotFit) {
  const RegisterFile file = RegisterFile::parse(
      "0xF800=0x1A //A B\r\n"
      "\r\n"
      "0xf801=0x2b //x\n"
      "0xF802=0x1\r\n"
      "0xF8031=0x11 //five digits\n"
      "0xF804=0x123 //three\n"
      "  0x5=0x7//\n"
      "0xF806=0x08 //last line, no end");
  EXPECT_EQ(file.lines,
            (std::vector<RegisterFile::Line>{{0xF800, 0x1A}, {0xF801, 0x2B}, {5, 7}, {0xF806, 8}}));
  EXPECT_EQ(file.skipped, 3u);
  EXPECT_EQ(file.first_skipped, 4u);
}

}  // namespace
}  // namespace qv5123
