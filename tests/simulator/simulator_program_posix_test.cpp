#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/program_posix.h"

namespace {

namespace fs = std::filesystem;
using namespace qv5123::test;

/// A host's end of the line. It sets up nothing: the line comes ready to use.
class Host {
 public:
  explicit Host(const std::string& path) : fd_(::open(path.c_str(), O_RDWR | O_NOCTTY)) {}
  ~Host() { ::close(fd_); }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  bool open() const { return fd_ >= 0; }
  void send(std::string_view text) {
    while (!text.empty()) {
      const ssize_t count = ::write(fd_, text.data(), text.size());
      ASSERT_GT(count, 0);
      text.remove_prefix(static_cast<std::size_t>(count));
    }
  }
  /// What came up to and including `wanted`; what came instead when it did not.
  std::string expect(std::string_view wanted) {
    read_until(fd_, received_, wanted);
    const std::size_t found = received_.find(wanted);
    const std::size_t end = found == std::string::npos ? found : found + wanted.size();
    const std::string text = received_.substr(0, end);
    received_.erase(0, end);
    return text;
  }

 private:
  int fd_;
  std::string received_;
};

/// A path of this test's own that does not exist.
fs::path fresh_path(const char* name) {
  const fs::path path = fs::temp_directory_path() / (std::string(name) + std::to_string(::getpid()));
  fs::remove(path);
  return path;
}

}  // namespace

TEST(SimulatorProgram, ServesHostsThatComeAndGo) {
  const fs::path link = fresh_path("qv5123sim-link");
  Program simulator("qv5123sim", {"--link", link.string(), "--trace"});
  const std::string path = simulator.line();
  EXPECT_EQ(fs::read_symlink(link), path);
  {
    Host host(link.string());
    ASSERT_TRUE(host.open());
    EXPECT_TRUE(host.expect("^").ends_with("303432^")) << "it announces itself";
    host.send("@9209*@9222*@935a*");
    EXPECT_EQ(simulator.line(), "@9209*");
  }
  // A host that comes back before anybody can notice that it was gone is not greeted.
  ::poll(nullptr, 0, 200);
  {
    Host host(path);
    ASSERT_TRUE(host.open());
    EXPECT_TRUE(host.expect("^").ends_with("303432^")) << "it announces itself again";
    host.send("@9409*@9422*");
    EXPECT_EQ(host.expect("^"), "~5a^") << "the chip has gone on living";
  }
  EXPECT_LT(simulator.processor_time(), 2);
  EXPECT_EQ(simulator.end(SIGTERM), 0);
  EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST(SimulatorProgram, ComesBackAfterAHangup) {
  const fs::path link = fresh_path("qv5123sim-hangup");
  Program simulator("qv5123sim", {"--link", link.string(), "--fault", "hangup=1"});
  const std::string first = simulator.line();
  {
    Host host(first);
    ASSERT_TRUE(host.open());
    host.send("@");
    EXPECT_EQ(host.expect("^"), "") << "the line breaks";
  }
  EXPECT_FALSE(simulator.line().empty()) << "the path that the board came back on";
  EXPECT_TRUE(Host(link.string()).open());
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

  Program without("qv5123sim", {"--port", "/dev/no-such-port"});
  EXPECT_NE(without.errors().find("/dev/no-such-port"), std::string::npos);
  EXPECT_EQ(without.end(), 3);
}

TEST(SimulatorProgram, NamesABadOptionInOneLine) {
  const fs::path file = fresh_path("qv5123sim-file");
  std::ofstream(file) << "mine";
  const struct {
    std::vector<std::string> arguments;
    std::string complaint;
  } cases[] = {
      {{"--fault", "drop=0.1", "--fault", "drop=2"}, "--fault \"drop=2\" needs a rate from 0 to 1"},
      {{"--bogus"}, "The following argument was not expected: --bogus"},
      {{"--seed", "x"}, "Could not convert: --seed = x"},
      {{"--line-rate", "0"}, "--line-rate: Value 0 not in range 1 to 100000000"},
      {{"--link", file.string()}, "--link " + file.string() + " exists and is not a link"},
  };
  for (const auto& bad : cases) {
    Program simulator("qv5123sim", bad.arguments);
    EXPECT_EQ(simulator.errors(), "qv5123sim: " + bad.complaint + "\n");
    EXPECT_EQ(simulator.end(), 2);
  }
  EXPECT_EQ(fs::file_size(file), 4u);
  fs::remove(file);
}
