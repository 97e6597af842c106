#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "cli/ctl_test.h"
#include "support/poll_until.h"
#include "support/program_posix.h"
#include "support/pty_line_posix.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::HasSubstr;
using Clock = std::chrono::steady_clock;

/// What the command line does when asked to end while what it writes to stands still.
class EndedBySignals : public CtlTest {
 protected:
  std::string fifo(const std::string& name) const {
    const std::string path = folder.path() / name;
    EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
    return path;
  }
  /// Started from a shell that tells the number of its process first.
  std::unique_ptr<test::Program> start_numbered(const std::string& arguments) {
    const std::string ctl = (test::program_folder() / "qv5123ctl").string();
    auto program = std::make_unique<test::Program>(
        "/bin/bash", std::vector<std::string>{"-c", "echo $$; exec \"$0\" " + arguments, ctl}, folder.path());
    process_ = program->line();
    return program;
  }
  /// Whether the program takes signals by itself.
  bool holds_signals() const {
    std::ifstream status("/proc/" + process_ + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("SigBlk:")) return (std::stoull(line.substr(7), nullptr, 16) & 2) != 0;
    }
    return false;
  }
  void wait_until_it_holds_signals() const {
    const auto end = Clock::now() + std::chrono::seconds(10);
    while (!holds_signals() && Clock::now() < end) std::this_thread::yield();
  }

  static constexpr std::chrono::seconds kSoon{20};
  std::string process_;
};

TEST_F(EndedBySignals, ATraceALogOrErrorsThatNobodyReadsHoldNobody) {
  folder.write("font.bin", std::string(256, 'f'));
  fifo("nobody");
  const int full = ::open(fifo("full").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  for (const std::string some(4096, '.'); ::write(full, some.data(), some.size()) > 0;) {
  }
  for (const auto& [arguments, errors] : {std::pair{"--trace nobody reg read 1", "qv5123ctl: Interrupted\n"},
                                          {"monitor --log nobody", "qv5123ctl: Interrupted\n"},
                                          {"download font font.bin 2>full", ""}}) {
    SCOPED_TRACE(arguments);
    const auto program = start_numbered(std::string("--simulate ") + arguments);
    wait_until_it_holds_signals();
    const auto start = Clock::now();
    program->signal(SIGINT);
    EXPECT_EQ(program->errors(), errors);
    EXPECT_EQ(program->end(), 1);
    EXPECT_LT(Clock::now() - start, kSoon);
  }
  ::close(full);
}

TEST_F(EndedBySignals, ATraceWhoseReaderStandsStillHoldsNobody) {
  folder.write("fw.bin", std::string(60000, 'f'));
  const int reader = ::open(fifo("trace").c_str(), O_RDWR | O_CLOEXEC);
  const auto program = start({"--simulate", "--trace", "trace", "download", "fw", "fw.bin"});
  std::string read;
  test::read_until(reader, read, "> 41 |A|");
  const auto start = Clock::now();
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) program->signal(signal);
  EXPECT_EQ(program->end(), 1);
  EXPECT_LT(Clock::now() - start, kSoon);
  ::close(reader);
}

TEST_F(EndedBySignals, OutputIntoAFullPipeHoldsNobody) {
  const int reader = ::open(fifo("out").c_str(), O_RDWR | O_CLOEXEC);
  const auto program = start_numbered("--simulate monitor --timestamps >out");
  wait_until_it_holds_signals();
  for (int i = 0; i < 40; ++i) program->type("@9b00*@9b00*@9b0f*@9bff*\n");
  int waiting = 0;
  for (const auto end = Clock::now() + std::chrono::seconds(20); waiting < 60000 && Clock::now() < end;) {
    ::ioctl(reader, FIONREAD, &waiting);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  const auto start = Clock::now();
  program->signal(SIGINT);
  EXPECT_EQ(program->end(), 1);
  EXPECT_LT(Clock::now() - start, kSoon);
  ::close(reader);
}

TEST_F(EndedBySignals, ADownloadToALineThatTakesNothingEndsAtOnceAndSaysWhatTheChipExpects) {
  folder.write("fw.bin", std::string(60000, 'f'));
  const std::string path = folder.path() / "line";
  PtyLine line(path);
  line.leave_to_others();
  const auto program = start({"--port", path, "download", "fw", "fw.bin"});
  EXPECT_EQ(line.received(1).substr(0, 1), "A");
  line.stall();
  program->expect_error("FIRMWARE");
  // For so long that the next block waits as well.
  auto since = Clock::now();
  test::poll_until([&] {
    if (!line.full()) since = Clock::now();
    return Clock::now() - since > std::chrono::milliseconds(300);
  });
  const auto start = Clock::now();
  program->signal(SIGINT);
  EXPECT_THAT(program->errors(), HasSubstr("the chip still expects "));
  EXPECT_EQ(program->end(), 3);
  EXPECT_LT(Clock::now() - start, kSoon);
}

TEST_F(EndedBySignals, ASecondOneDuringADownloadSaysWhatTheChipExpects) {
  folder.write("font.bin", std::string(256 * 40, 'f'));
  plug_in({});
  const auto program = start({"download", "font", "font.bin", "--port", "board"});
  program->expect_error("< Ready to FONT >");
  program->signal(SIGINT);
  program->expect_error("reject it");
  program->signal(SIGINT);
  EXPECT_THAT(program->errors(),
              testing::ContainsRegex("qv5123ctl: Cancelled: FONT stopped: the chip still expects "
                                     "(an image|([0-9]+ blocks? of 256 bytes and )?a checksum)\n"))
      << "how far it was depends on the machine";
  EXPECT_EQ(program->end(), 1);
}

TEST_F(EndedBySignals, ABoardUnpluggedDuringADownloadIsSaidWithWhatHasLeft) {
  folder.write("font.bin", std::string(256 * 40, 'f'));
  plug_in({});
  const auto program = start({"download", "font", "font.bin", "--port", "board"});
  program->expect_error("< Ready to FONT >");
  board->end(SIGKILL);
  EXPECT_THAT(program->errors(),
              HasSubstr("qv5123ctl: The port failed in the middle of the image: FONT broken off "));
  EXPECT_EQ(program->end(), 3);
}

TEST_F(CtlTest, InfoEndsAtTheTimeoutHoweverMuchTheChipChatsAndEscapesItOnce) {
  const std::string path = folder.path() / "line";
  PtyLine line(path);
  line.leave_to_others();
  const auto program = start({"--json", "--port", path, "--timeout", "700", "info", "ae"});
  line.received(6);
  std::jthread chip([&](const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      line.send(" gain: 7\r\n noise: \x1b\x7f\x9b\r\n");
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  });
  const std::string out = program->output();
  EXPECT_EQ(program->end(), 0);
  const auto fields = nlohmann::json::parse(out)["fields"];
  EXPECT_EQ(fields["gain"], 7);
  EXPECT_EQ(fields["noise"], "\x1b\x7f\xC2\x9B");
  EXPECT_THAT(out, HasSubstr("\\u001b\\u007f\\u009b\""));
}

}  // namespace
}  // namespace qv5123
