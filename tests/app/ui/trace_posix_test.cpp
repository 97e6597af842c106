// The program itself with "--trace".
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "support/program.h"
#include "support/source_folder.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using testing::HasSubstr;

TEST(ProgramTrace, HasWhatTheProgramAndTheChipSaid) {
  const test::TemporaryFolder folder;
  for (const char* file : {"regu.xml", "sample.dat"})
    std::filesystem::copy(test::source_folder() / "resources" / file, folder / file);
  test::Program chip("qv5123sim", {"--trace", "--link", (folder / "chip").string()});
  chip.line();
  // What it stores is no user's.
  std::vector<std::string> arguments;
  for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
    arguments.push_back(variable + ("=" + folder.path().string()));
  for (const char* argument : {"QV5123", "--port", "chip", "--settings", "sample.dat", "--trace", "trace"})
    arguments.push_back(argument);
  arguments[3] = (test::program_folder() / arguments[3]).string();
  test::Program program("/usr/bin/env", arguments, folder.path());
  chip.expect("@9400*");
  EXPECT_EQ(program.end(SIGTERM), 0) << program.errors();
  const std::string trace = folder.read("trace");
  EXPECT_TRUE(trace.starts_with("# 2")) << trace;
  EXPECT_THAT(trace, HasSubstr(" > 40 39 34 30 38 2a 40 39 34 30 30 2a |@9408*@9400*|\n"));
  EXPECT_THAT(trace, HasSubstr(" < 0d")) << "the chip's greeting";
}

}  // namespace
}  // namespace qv5123
