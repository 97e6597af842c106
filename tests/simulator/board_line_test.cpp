#include "simulator/board_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

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
  /// Everything that comes until nothing is left to do; `now` is then when the last of it came.
  std::string take_all() {
    std::string all = take();
    while (const auto next = line.next(now)) {
      now = *next;
      all += take();
    }
    return all;
  }

  SimulatedChip chip;
  BoardLine line;
  TimePoint now{1h};
};

FaultRates with_fault(std::string_view fault) {
  FaultRates rates;
  EXPECT_EQ(parse_fault(fault, rates), "");
  return rates;
}

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
    FaultInjector injector(with_fault(fault), seed);
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
}

TEST(BoardLine, PassesBytesNoFasterThanTheLine) {
  LineOptions options;
  options.line_rate = 19200;
  Board board(options);
  const TimePoint start = board.now;
  const std::string request = "@9408*@9404*";
  EXPECT_EQ(board.ask(request), "");
  EXPECT_EQ(board.take_all(), "~12^");
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

TEST(BoardLine, ForgetsHalfARequestAfterSilence) {
  Board board;
  board.ask("@9401*");
  board.now += 31ms;
  EXPECT_EQ(board.ask("@9408*@9404*"), "~12^");
}
