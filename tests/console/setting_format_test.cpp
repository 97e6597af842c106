#include "console/setting_format.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/setting_file.h"

namespace qv5123 {
namespace {

std::string lines(const std::string& line, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += line + "\r\n";
  return text;
}

TEST(SettingFormat, OfAFileThatIsNotWholeSaysWhatAReaderMakesOfIt) {
  for (const std::string& whole : {setting_text({}), lines("+255", 1024), lines("7", 1023) + "8"}) {
    EXPECT_EQ(format_summary(whole), "");
    EXPECT_TRUE(format_problems(whole).empty());
  }
  EXPECT_EQ(format_summary(lines("7", 2048), 2048), "");
  EXPECT_EQ(format_summary("5\n1,2\n3\n"),
            "2 numbers of 1024, the rest repeats 1 (line 2: \"1,2\" is no decimal number)");
  EXPECT_EQ(format_summary("\xEF\xBB\xBF" + lines("5", 1024)),
            "0 numbers of 1024, the rest repeats 0 (it begins with a byte-order mark)");
  EXPECT_EQ(format_summary(std::string("\xFF\xFE"
                                       "5\0\n\0",
                                       6)),
            "0 numbers of 1024, the rest repeats 0 (it is UTF-16 or no text)");
  EXPECT_EQ(format_summary(lines("1", 1025)), "more than 1024 numbers, the rest is not read");
  EXPECT_EQ(format_summary(lines("1", 1022) + "300\n-1\n"),
            "2 numbers not in 0..255, of which the low 8 bits count (line 1023: \"300\")");
  EXPECT_EQ(format_summary("\x1b" + std::string(100, 'x')),
            "0 numbers of 1024, the rest repeats 0 (line 1: \"?" + std::string(19, 'x') + "..." +
                std::string(20, 'x') + "\" is no decimal number)")
      << "what a file holds cannot command a terminal, nor fill the window";
}

}  // namespace
}  // namespace qv5123
