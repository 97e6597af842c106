#include <gmock/gmock.h>

#include "cli/ctl_test.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::HasSubstr;

TEST_F(CtlTest, BashCompletes) {
  folder.write("my setting.dat", "");
  const auto complete = [&](const std::string& words) {
    const std::string script = "source \"$0\"; COMP_WORDS=(qv5123ctl " + words +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _qv5123ctl qv5123ctl qv; "
                               "printf '%s\\n' \"${COMPREPLY[@]}\"";
    const std::string completions = test::source_folder() / "completions/qv5123ctl.bash";
    test::Program bash("/bin/bash", {"-c", script, completions}, folder.path());
    return bash.output();
  };
  EXPECT_EQ(complete("--simulate reg read --w"), "--wide\n");
  EXPECT_EQ(complete("page show ga"), "gamma\n");
  EXPECT_EQ(complete("settings show my"), "my setting.dat\n");
}

/// The block of the guide that stands behind the mark.
std::string block_of(const std::string& file, const std::string& mark) {
  std::ifstream guide(test::source_folder() / file);
  std::string line, script;
  while (std::getline(guide, line) && line != "<!-- " + mark + " -->") {
  }
  std::getline(guide, line);
  while (std::getline(guide, line) && line != "```") script += line + "\n";
  return script;
}

TEST_F(CtlTest, TheGuidesExampleRunsAsItStands) {
  for (const char* name : {"sample.dat", "firmware.bin", "fontT_16x24_.bin", "regu.xml"}) copy_resource(name);
  folder.write("station.sh", block_of("docs/cli.md", "example"));
  test::Program shell("/bin/bash",
                      {"-c", "PATH=\"$0:$PATH\" exec /bin/bash station.sh", test::program_folder().string()},
                      folder.path());
  const std::string out = shell.expect("PASS\n");
  EXPECT_THAT(out, testing::EndsWith("PASS\n")) << shell.errors();
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(CtlTest, TheGuidesStationRunsAsItStands) {
  for (const char* name : {"sample.dat", "firmware.bin", "fontT_16x24_.bin", "regu.xml"}) copy_resource(name);
  for (const char* name : {"load.toml", "calibrate.toml", "station.sh"})
    folder.write(name, block_of("docs/line.md", name));
  test::Program shell("/bin/bash",
                      {"-c", "PATH=\"$0:$PATH\" exec /bin/bash station.sh", test::program_folder().string()},
                      folder.path());
  std::string out;
  // It takes longer than anything else that is waited for.
  for (int i = 0; i < 8 && out.find("units_total{") == std::string::npos; ++i)
    out += shell.expect("units_total{verdict=\"pass\"} 2\n");
  EXPECT_THAT(out, HasSubstr("units: 2, in 2 records\nyield: 100.0 % (2)\n")) << shell.errors();
  EXPECT_TRUE(std::filesystem::exists(folder / "L7-0002.json"));
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(CtlTest, OutputThatIsNotTaken) {
  copy_resource("sample.dat");
  const std::string ctl = (test::program_folder() / "qv5123ctl").string();
  const auto bash = [&](const std::string& command) {
    test::Program shell("/bin/bash", {"-c", command, ctl}, folder.path());
    const std::string out = shell.output();
    const std::string err = shell.errors();
    return Result{shell.end(), out, err};
  };
  const auto piped = bash("\"$0\" --simulate reg dump 0 0xFFF | head -2; exit ${PIPESTATUS[0]}");
  EXPECT_EQ(piped.err, "");
  EXPECT_EQ(piped.code, 0);
  const auto full = bash("\"$0\" settings show sample.dat >/dev/full");
  EXPECT_EQ(full.err, "qv5123ctl: Cannot write the output: No space left on device\n");
  EXPECT_EQ(full.code, 2);
  folder.write("font.bin", std::string(256 * 4, 'f'));
  EXPECT_EQ(bash("\"$0\" --simulate --trace trace download font font.bin | true; exit ${PIPESTATUS[0]}").code,
            0);
  EXPECT_THAT(folder.read("trace"), HasSubstr("4 blocks received")) << "nobody reads, all is sent";
  EXPECT_EQ(bash("timeout 5 \"$0\" --simulate monitor | head -1; exit ${PIPESTATUS[0]}").code, 0);
  EXPECT_EQ(bash("\"$0\" --simulate --trace trace reg read 1 >&-").code, 2);
  EXPECT_THAT(folder.read("trace"), testing::Not(HasSubstr("0xF001"))) << "no file takes the place of stdout";
}

}  // namespace
}  // namespace qv5123
