#include "simulator/simulated_board.h"

#include <gtest/gtest.h>

#include "support/chip_talk.h"

using namespace qv5123;
using namespace std::chrono_literals;

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
