#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/program_posix.h"
#include "support/temporary_folder.h"

namespace fs = std::filesystem;
using namespace qv5123::test;

TEST(SimulatorProgram, ServesHostsThatComeAndGo) {
  const TemporaryFolder folder;
  const fs::path link = folder / "link";
  Program simulator("qv5123sim", {"--link", link.string(), "--trace"});
  EXPECT_EQ(fs::read_symlink(link), simulator.line());
  for (int host = 0; host < 2; ++host) {
    const int line = ::open(link.c_str(), O_RDWR | O_NOCTTY);
    std::string text;
    read_until(line, text, "^");
    EXPECT_TRUE(text.ends_with("303432^")) << "it announces itself to each";
    EXPECT_EQ(::write(line, "@9209*", 6), 6);
    EXPECT_EQ(simulator.line(), "@9209*");
    ::close(line);
    // A host that comes back before anybody can notice that it was gone is not greeted.
    ::poll(nullptr, 0, 200);
  }
  EXPECT_LT(simulator.processor_time(), 2);
  simulator.end(SIGKILL);
  EXPECT_TRUE(fs::is_symlink(link));
  Program next("qv5123sim", {"--link", link.string()});
  EXPECT_EQ(fs::read_symlink(link), next.line()) << "what a killed run left is replaced";
  EXPECT_EQ(next.end(SIGTERM), 0);
  EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST(SimulatorProgram, ComesBackAfterAHangup) {
  const TemporaryFolder folder;
  const fs::path link = folder / "link";
  Program simulator("qv5123sim", {"--link", link.string(), "--fault", "hangup=1"});
  simulator.line();
  const int line = ::open(link.c_str(), O_RDWR | O_NOCTTY);
  std::string text;
  read_until(line, text, "^");
  EXPECT_EQ(text, "") << "the line breaks";
  ::close(line);
  EXPECT_FALSE(simulator.line().empty()) << "the path that the board came back on";
  EXPECT_EQ(simulator.end(SIGTERM), 0);
}

TEST(SimulatorProgram, AnswersOnAPortThatItIsGiven) {
  const int near_end = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_TRUE(near_end >= 0 && ::grantpt(near_end) == 0 && ::unlockpt(near_end) == 0);
  const std::string port = ::ptsname(near_end);
  Program simulator("qv5123sim", {"--port", port});
  EXPECT_EQ(simulator.line(), port);
  std::string text;
  read_until(near_end, text, "^");
  EXPECT_TRUE(text.ends_with("303432^"));
  const std::string_view request = "@9408*@9404*";
  ASSERT_EQ(::write(near_end, request.data(), request.size()), static_cast<ssize_t>(request.size()));
  text.clear();
  read_until(near_end, text, "^");
  EXPECT_EQ(text, "~12^");
  // A port that is gone is looked for again, but a program that is to end does so.
  ::close(near_end);
  EXPECT_EQ(simulator.end(SIGTERM), 0);
  EXPECT_EQ(Program("qv5123sim", {"--port", "/dev/no-such-port"}).end(), 3);
}

TEST(SimulatorProgram, NamesABadOptionInOneLine) {
  const TemporaryFolder folder;
  const fs::path file = folder.write("file", "mine");
  const fs::path link = folder / "users";
  const fs::path dangling = folder / "dangling";
  fs::create_symlink(file, link);
  fs::create_symlink("nowhere", dangling);
  const struct {
    std::vector<std::string> arguments;
    std::string complaint;
  } cases[] = {
      {{"--fault", "drop=0.1", "--fault", "drop=2"}, "--fault \"drop=2\" needs a rate from 0 to 1"},
      {{"--line-rate", "0"}, "--line-rate: Value 0 not in range 1 to 100000000"},
      {{"--link", file.string()}, "--link " + file.string() + " exists and is not a link"},
      {{"--link", link.string()}, "--link " + link.string() + " exists and leads to " + file.string()},
      {{"--link", dangling.string()}, "--link " + dangling.string() + " exists and leads to nowhere"},
  };
  for (const auto& bad : cases) {
    Program simulator("qv5123sim", bad.arguments);
    EXPECT_EQ(simulator.errors(), "qv5123sim: " + bad.complaint + "\n");
    EXPECT_EQ(simulator.end(), 2);
  }
  EXPECT_EQ(fs::file_size(link), 4u);
  EXPECT_EQ(fs::read_symlink(dangling), "nowhere");
}
