#include "simulator/simulated_board.h"

#include <gtest/gtest.h>

#include <string>

using namespace qv5123;
using namespace std::chrono_literals;

namespace {

std::string received(SimulatedBoard& board) {
  std::uint8_t buffer[4096];
  const std::size_t count = board.read(buffer);
  return {buffer, buffer + count};
}

std::size_t send(SimulatedBoard& board, std::string_view text) {
  return board.write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace

TEST(SimulatedBoard, AnswersLikeADeviceAndAnnouncesItselfOnEachOpen) {
  SimulatedBoard board;
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(board.open("simulated", {}).ok());
    EXPECT_NE(received(board).find("QV5123 camera ISP"), std::string::npos);
    EXPECT_EQ(send(board, "@9408*@9404*"), 12u);
    EXPECT_EQ(board.wait(), SerialDevice::Wait::received);
    EXPECT_EQ(received(board), "~12^");
    board.close();
  }
}

TEST(SimulatedBoard, LosesWhatWasNotKeptWhenUnplugged) {
  SimulatedBoard board;
  ASSERT_TRUE(board.open("", {}).ok());
  send(board, "@3777*@fa01*@3878*@fa00*");
  received(board);
  board.unplug();
  EXPECT_EQ(board.wait(), SerialDevice::Wait::lost);
  board.close();
  EXPECT_EQ(board.open("", {}).error, OpenError::not_found);
  board.plug_in();
  ASSERT_TRUE(board.open("", {}).ok());
  board.with_chip([](SimulatedChip& chip) {
    EXPECT_NE(chip.direct(0x37), 0x77);
    EXPECT_EQ(chip.direct(0x38), 0x78);
  });
}

TEST(SimulatedBoard, ComesBackAfterAHangup) {
  TimePoint now{1h};
  LineOptions options;
  options.faults.hangup = 1;
  SimulatedBoard board(options, [&] { return now; });
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
}
