#include "base/append_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

Tail judge(std::string_view tail) {
  if (!tail.starts_with("line ")) return Tail::foreign;
  return tail.ends_with('.') ? Tail::whole : Tail::cut;
}

TEST(AppendFile, WhatStandsBehindTheLastLineEndIsKeptTakenAwayOrLeftAlone) {
  const test::TemporaryFolder folder;
  const std::string many(10'000, 'x');
  for (const auto& [before, after] : std::map<std::string, std::string>{
           {"", "line 3.\n"},
           {"line 1.\n", "line 1.\nline 3.\n"},
           {"line 1.\nline 2.", "line 1.\nline 2.\nline 3.\n"},
           {"line 1.\nline " + many, "line 1.\nline 3.\n"},
           {"line " + many + ".", "line " + many + ".\nline 3.\n"},
       }) {
    const auto file = folder.write("f", before);
    EXPECT_EQ(append_lines(file, "line 3.\n", judge), "");
    EXPECT_EQ(folder.read("f"), after);
  }
  const std::string program = "\x7F!" + many;
  EXPECT_THAT(append_lines(folder.write("f", program), "line 3.\n", judge),
              testing::StartsWith("Cannot write "));
  EXPECT_EQ(folder.read("f"), program) << "not a byte of it is touched";
  EXPECT_EQ(append_lines(folder / "new", "", judge), "") << "only tried";
  EXPECT_EQ(folder.read("new"), "");
  EXPECT_NE(append_lines(folder.path(), "line 3.\n", judge), "");
}

}  // namespace
}  // namespace qv5123
