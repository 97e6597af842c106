#include <fstream>
#include <sstream>

#include "cli/ctl_test.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::HasSubstr;

std::string source_file(const std::string& name) {
  std::ifstream file(std::filesystem::path(QV5123_SOURCE_DIR) / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(CtlTest, HelpOnEveryLevelAndTheVersion) {
  EXPECT_THAT(ctl({"--help"}).out, HasSubstr("\nCommands:\n  ports "));
  EXPECT_THAT(ctl({"reg", "--help"}).out, HasSubstr("  dump "));
  EXPECT_THAT(ctl({"reg", "read", "--help"}).out, HasSubstr("ADDR ... REQUIRED"));
  EXPECT_EQ(ctl({"--version"}).out, "qv5123ctl " QV5123_VERSION "\n");
  EXPECT_EQ(ctl({"ports", "--json"}).json().type(), nlohmann::json::value_t::array);
}

TEST_F(CtlTest, ManualPageAndCompletionAreThoseOfTheProgram) {
  EXPECT_EQ(ctl({"man"}).out, source_file("docs/qv5123ctl.1")) << "qv5123ctl man >docs/qv5123ctl.1";
  EXPECT_EQ(ctl({"bash-completion"}).out, source_file("completions/qv5123ctl.bash"))
      << "qv5123ctl bash-completion >completions/qv5123ctl.bash";
}

TEST_F(CtlTest, BashCompletes) {
  folder.write("my setting.dat", "");
  const auto complete = [&](const std::string& words) {
    test::Program bash("/bin/bash",
                       {"-c",
                        "source \"$0\"; COMP_WORDS=(qv5123ctl " + words +
                            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _qv5123ctl qv5123ctl qv; "
                            "printf '%s\\n' \"${COMPREPLY[@]}\"",
                        std::string(QV5123_SOURCE_DIR) + "/completions/qv5123ctl.bash"},
                       folder.path());
    return bash.output();
  };
  EXPECT_EQ(complete("se"), "send\nsettings\n");
  EXPECT_EQ(complete("--simulate reg rea"), "read\n");
  EXPECT_EQ(complete("reg read --w"), "--wide\n");
  EXPECT_EQ(complete("page show ga"), "gamma\n");
  EXPECT_EQ(complete("settings show my"), "my setting.dat\n");
  EXPECT_EQ(complete("reg read 1 --js"), "--json\n");
}

/// The shell blocks of the guide that stand behind the mark.
std::string example() {
  std::istringstream guide(source_file("docs/cli.md"));
  std::string line, script;
  while (std::getline(guide, line) && line != "<!-- example -->") {
  }
  std::getline(guide, line);
  while (std::getline(guide, line) && line != "```") script += line + "\n";
  return script;
}

TEST_F(CtlTest, TheGuidesExampleRunsAsItStands) {
  for (const char* name : {"sample.dat", "firmware.bin", "fontT_16x24_.bin", "regu.xml"}) copy_resource(name);
  folder.write("station.sh", example());
  test::Program shell("/bin/bash",
                      {"-c", "PATH=\"$0:$PATH\" exec /bin/bash station.sh", test::program_folder().string()},
                      folder.path());
  const std::string out = shell.expect("PASS\n");
  EXPECT_THAT(out, testing::EndsWith("PASS\n")) << shell.errors();
  EXPECT_EQ(shell.end(), 0);
}

}  // namespace
}  // namespace qv5123
