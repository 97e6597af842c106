#include "simulator/board_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "simulator/simulated_board.h"
#include "support/chip_talk.h"

using namespace qv5123;
using namespace std::chrono_literals;

namespace {

std::span<const std::uint8_t> bytes_of(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// A board on a line whose time is moved by hand.
struct Board {
  explicit Board(LineOptions options = {}) : line(chip, options) { line.plug_in(); }

  std::string take() {
    const auto bytes = line.take(now);
    return {bytes.begin(), bytes.end()};
  }
  std::string ask(std::string_view text) {
    line.put(bytes_of(text), now);
    return take();
  }

  SimulatedChip chip;
  BoardLine line;
  TimePoint now{1h};
};

}  // namespace

TEST(FaultOption, NamesWhatIsWrong) {
  FaultRates rates;
  EXPECT_EQ(parse_fault("drop=0.25", rates), "");
  EXPECT_EQ(parse_fault("drop", rates), "\"drop\" is not of the form KIND=RATE");
  EXPECT_EQ(parse_fault("dorp=1", rates),
            "\"dorp=1\" names no fault; the kinds are drop, corrupt, duplicate, delay, hangup");
  for (const char* rate : {"", "-0.1", "1.01", "nan", "0.5x", "1e999"})
    EXPECT_NE(parse_fault(std::string("drop=") + rate, rates), "") << rate;
  EXPECT_EQ(rates.drop, 0.25);
}

TEST(Faults, DoWhatTheySayAndTheSameForTheSameSeed) {
  const std::string text(10000, 'x');
  const auto through = [&](std::string_view fault, std::uint64_t seed) {
    FaultRates rates;
    EXPECT_EQ(parse_fault(fault, rates), "");
    FaultInjector injector(rates, seed);
    injector.put(bytes_of(text), TimePoint{});
    const auto bytes = injector.take(TimePoint{});
    return std::string(bytes.begin(), bytes.end());
  };
  EXPECT_NEAR(through("drop=0.1", 1).size(), 9000, 200);
  EXPECT_NEAR(through("duplicate=0.1", 1).size(), 11000, 200);
  const std::string corrupted = through("corrupt=0.1", 7);
  EXPECT_NEAR(std::count(corrupted.begin(), corrupted.end(), 'x'), 9000, 200);
  EXPECT_EQ(corrupted, through("corrupt=0.1", 7));
}

TEST(BoardLine, AnnouncesTheChipToAHostThatListens) {
  Board board;
  board.line.host_opened(board.now);
  EXPECT_EQ(board.take(), "");
  board.now += 60ms;
  EXPECT_NE(board.take().find("QV5123 camera ISP"), std::string::npos);

  board.line.host_opened(board.now);
  EXPECT_EQ(board.ask("@9408*@9404*"), "~12^");
  board.now += 60ms;
  EXPECT_EQ(board.take(), "") << "a host that speaks first must not take the announcement for its answer";
  board.ask("@9401*");
  board.now += 31ms;
  EXPECT_EQ(board.ask("@9408*@9404*"), "~12^") << "half a request is forgotten after silence";
}

TEST(BoardLine, PassesBytesNoFasterThanTheLine) {
  LineOptions options;
  options.line_rate = 19200;
  Board board(options);
  const TimePoint start = board.now;
  const std::string request = "@9408*@9404*";
  EXPECT_EQ(board.ask(request), "");
  std::string all = board.take();
  while (const auto next = board.line.next(board.now)) {
    board.now = *next;
    all += board.take();
  }
  EXPECT_EQ(all, "~12^");
  const std::chrono::duration<double> taken = board.now - start;
  EXPECT_NEAR(taken.count(), 16 * 10 / 19200.0, 1e-6) << "twelve bytes in, four out, ten bits each";

  board.line.put(bytes_of(std::string(300, 'x')), board.now);
  EXPECT_EQ(board.line.room(), 212u);
  // Being looked at late does not slow the line down; silence earns no credit.
  board.now += 100ms;
  board.take();
  EXPECT_EQ(board.line.room(), 404u);
  board.now += 10s;
  board.take();
  EXPECT_EQ(board.ask("@9409*"), "");
  EXPECT_EQ(board.line.room(), 506u);
}

TEST(SimulatedBoard, ComesBackAfterAHangupAsAfterAPowerCut) {
  TimePoint now{1h};
  LineOptions options;
  options.faults.hangup = 1;
  SimulatedBoard board(options, [&] { return now; });
  board.with_chip([](SimulatedChip& chip) { test::ask(chip, "@3777*@fa01*@3878*@fa00*"); });
  // The announcement is what breaks the line.
  ASSERT_TRUE(board.open("", {}).ok());
  EXPECT_EQ(board.wait(), SerialDevice::Wait::lost);
  board.close();
  now += SimulatedBoard::kUnplugged - 1ms;
  board.advance();
  EXPECT_EQ(board.open("", {}).error, OpenError::not_found);
  now += 1ms;
  board.advance();
  EXPECT_TRUE(board.open("", {}).ok());
  board.with_chip([](SimulatedChip& chip) {
    EXPECT_NE(chip.direct(0x37), 0x77) << "it was not kept";
    EXPECT_EQ(chip.direct(0x38), 0x78);
  });
}
