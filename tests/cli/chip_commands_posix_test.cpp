#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>
#include <sstream>
#include <thread>

#include "base/hex.h"
#include "cli/ctl_test.h"
#include "console/setting_file.h"
#include "support/pty_line_posix.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/// What the program has sent, up to `wanted`.
std::string received_with(PtyLine& line, const std::string& wanted) {
  std::string got = line.received(1);
  while (got.find(wanted) == std::string::npos) {
    const std::string more = line.received(1);
    if (more.empty()) break;
    got += more;
  }
  return got;
}

TEST_F(CtlTest, ADumpOfAChipThatChatsEndsAfterTheTimeout) {
  PtyLine line(folder.path() / "chip");
  line.leave_to_others();
  const auto dump = start({"reg", "dump", "1", "2", "--timeout", "300", "--port", "chip"});
  line.received(6);
  const std::jthread chat([&line](const std::stop_token& end) {
    for (; !end.stop_requested(); std::this_thread::sleep_for(std::chrono::milliseconds(50)))
      line.send("0xF001 = 0x12\r\n");
  });
  EXPECT_THAT(dump->output(), StartsWith("0xF001 = 0x12\n"));
  EXPECT_EQ(dump->end(), 0);
}

TEST_F(CtlTest, AnInterruptedSaveIsClosed) {
  copy_resource("sample.dat");
  plug_in();
  const auto save = start({"page", "save", "gamma", "--from", "sample.dat", "--port", "board"});
  EXPECT_THAT(board->expect("@03"), HasSubstr("@fa01*\n"));
  save->signal(SIGINT);
  EXPECT_THAT(save->errors(),
              testing::EndsWith("qv5123ctl: Interrupted: the chip has only a part of the page\n"));
  EXPECT_EQ(save->end(), 1);
  EXPECT_THAT(board->expect("@f900*"), HasSubstr("\n@fa00*\n"));
}

TEST_F(CtlTest, AnInterruptAfterTheSaveIsNotSwallowed) {
  copy_resource("sample.dat");
  plug_in({"--trace", "--latency", "20000"});
  const auto verify = start(
      {"page", "save", "lsc", "--from", "sample.dat", "--verify", "--timeout", "60000", "--port", "board"});
  board->expect("@6b00*");
  verify->signal(SIGINT);
  EXPECT_THAT(verify->errors(), testing::EndsWith("qv5123ctl: Interrupted\n"));
  EXPECT_EQ(verify->end(), 1);
}

TEST_F(CtlTest, APageIsRepairedUntilTheChipHasIt) {
  copy_resource("sample.dat");
  PtyLine line(folder.path() / "chip");
  line.leave_to_others();
  const auto repair = start({"page", "save", "lsc", "--from", "sample.dat", "--repair", "3", "--timeout",
                             "30000", "--port", "chip"});
  const UserDataImage file = read_setting_file(folder.path() / "sample.dat").image;
  std::string saved;
  for (std::size_t entry = 440; entry < 452; ++entry) saved += lower_hex(file.entry(entry), 2);
  const std::string lost = std::string(saved).replace(16, 4, "0fff");  // of Parameter-2 GREEN
  for (const std::string& answer : {lost, lost, saved}) {
    EXPECT_THAT(received_with(line, "@6b00*"), HasSubstr("@6b00*"));
    line.send("~" + answer + "^");
  }
  EXPECT_EQ(repair->errors(),
            "lsc: saving, 10 flushes\n"
            "lsc: 1 of 6 values differs: Parameter-2 GREEN (sent 280, chip 4095); sending again\n"
            "lsc: 6 values read back agree\n");
  EXPECT_EQ(repair->end(), 0);

  const auto verify = start(
      {"page", "save", "lsc", "--from", "sample.dat", "--verify", "--timeout", "30000", "--port", "chip"});
  for (int answers = 0; answers < 2; ++answers) {
    received_with(line, "@6b00*");
    line.send("~" + lost + "^");
  }
  EXPECT_EQ(verify->output(), "lsc.parameter2.g: chip 4095, file 280\n");
  EXPECT_EQ(verify->end(), 1);
}

TEST_F(CtlTest, AnInterruptedRepairIsClosed) {
  copy_resource("sample.dat");
  PtyLine line(folder.path() / "chip");
  line.leave_to_others();
  const auto repair = start({"page", "save", "lsc", "--from", "sample.dat", "--repair", "3", "--timeout",
                             "30000", "--port", "chip"});
  for (int answers = 0; answers < 2; ++answers) {
    EXPECT_THAT(received_with(line, "@6b00*"), HasSubstr("@6b00*"));
    line.send("~000000000000000000000000^");
  }
  received_with(line, "@fa01*");
  repair->signal(SIGINT);
  EXPECT_THAT(repair->errors(),
              testing::AllOf(HasSubstr("; sending again\n"), testing::EndsWith("qv5123ctl: Interrupted\n")));
  EXPECT_EQ(repair->end(), 1);
  EXPECT_THAT(received_with(line, "@f900*"), HasSubstr("@fa00*@f900*"));
}

TEST_F(CtlTest, ADigitThatTheLineHasSpoiltIsNotSentBack) {
  PtyLine line(folder.path() / "chip");
  line.leave_to_others();
  const auto set = start({"param", "set", "awb.a_slope=5", "--timeout", "30000", "--port", "chip"});
  const std::string others(32, '0');
  for (const std::string intercept : {"ff39", "ff38", "ff38"}) {
    EXPECT_THAT(received_with(line, "@3600*"), HasSubstr("@3600*"));
    line.send("~0100" + intercept + others + "^");
  }
  EXPECT_THAT(received_with(line, "@fa00*"), HasSubstr("@0d00*@0d05*@0eff*@0e38*"));
  EXPECT_EQ(set->end(), 0);
}

TEST_F(CtlTest, ProgressIsShownOnATerminal) {
  folder.write("font.bin", std::string(1024, 'f'));
  PtyLine terminal(folder.path() / "terminal");
  const std::string ctl = (test::program_folder() / "qv5123ctl").string();
  test::Program shell("/bin/bash", {"-c", "\"$0\" --simulate download font font.bin 2>terminal", ctl},
                      folder.path());
  EXPECT_THAT(received_with(terminal, "1.0 of 1.0 KiB"), HasSubstr("\r0.5 of 1.0 KiB, "));
  shell.output();
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(CtlTest, ACancelledDownloadLeavesTheChipWithItsOldImage) {
  folder.write("font.bin", std::string(256 * 20, 'f'));
  plug_in({});
  const auto download = start({"download", "font", "font.bin", "--port", "board"});
  download->expect_error("< Ready to FONT >");
  download->signal(SIGINT);
  EXPECT_THAT(download->errors(),
              testing::AllOf(HasSubstr("old image kept"), testing::EndsWith("qv5123ctl: Cancelled\n")));
  EXPECT_EQ(download->end(), 1);
  EXPECT_EQ(on_board({"reg", "read", "0xF922"}).code, 0) << "it takes commands again";
}

TEST_F(CtlTest, MonitorsTheConsoleBothWays) {
  plug_in({});
  const auto monitor = start({"monitor", "--port", "board", "--log", "log.txt"});
  EXPECT_THAT(monitor->expect("PAL T_25fps\n"), HasSubstr("QV5123 camera ISP"));
  EXPECT_THAT(monitor->line(), MatchesRegex("= 54 digits: 00 01 .*"));
  monitor->type("@9409*@9422*\n");
  EXPECT_EQ(monitor->line(), "= 0xF922 = 0x00");
  monitor->type("@6b00*\r\n");
  EXPECT_THAT(monitor->line(), StartsWith("= lsc.parameter1.r = "));
  EXPECT_EQ(monitor->end(SIGINT), 0);
  const std::string log = folder.read("log.txt");
  EXPECT_THAT(log, HasSubstr(" > @9409*@9422*\n"));
  EXPECT_THAT(log, HasSubstr(" < QV5123 camera ISP"));

  EXPECT_THAT(on_board({"monitor", "--for", "300", "--timestamps", "--log", "log.txt"}).out,
              HasSubstr(" < QV5123 camera ISP"));
  EXPECT_TRUE(folder.read("log.txt").starts_with(log)) << "it goes on";
  std::istringstream lines(on_board({"monitor", "--for", "300", "--json"}).out);
  std::string line;
  while (std::getline(lines, line)) EXPECT_TRUE(nlohmann::json::parse(line).contains("time"));
}

TEST_F(CtlTest, AnUnpluggedBoardAndASilentOne) {
  plug_in({});
  const auto monitor = start({"monitor", "--port", "board"});
  monitor->expect("fps\n");
  board->end(SIGKILL);
  EXPECT_EQ(monitor->errors(), "qv5123ctl: board is gone\n");
  EXPECT_EQ(monitor->end(), 3);
  EXPECT_EQ(on_board({"osd", "up"}).err,
            "qv5123ctl: There is no port board. Plug the board in, or choose "
            "another port.\n");

  plug_in({"--fault", "drop=1"});
  const auto silent = on_board({"reg", "read", "0x922", "--timeout", "100"});
  EXPECT_EQ(silent.code, 1);
  EXPECT_EQ(silent.err, "qv5123ctl: 0xF922: the chip did not answer\n");
}

TEST_F(CtlTest, AnInterruptedReplayClosesTheSave) {
  plug_in();
  folder.write("long.regs", "fa01\nwait 60000\n0100\n");
  const auto replay = start({"replay", "long.regs", "--port", "board"});
  board->expect("@fa01*");
  replay->signal(SIGINT);
  board->expect("@fa00*");
  EXPECT_EQ(replay->errors(), "qv5123ctl: Interrupted before long.regs, line 3\n");
  EXPECT_EQ(replay->end(), 1);
}

}  // namespace
}  // namespace qv5123
