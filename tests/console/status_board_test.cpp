#include "console/status_board.h"

#include <gtest/gtest.h>

#include "link/indirect_access.h"

namespace qv5123 {
namespace {

using Strings = std::vector<std::string>;

Strings failures(const StatusBoard& board) {
  Strings texts;
  for (const StatusMessage& failure : board.failures()) texts.push_back(failure.text);
  return texts;
}

TEST(StatusBoard, AFailureStandsUntilItIsReadOrItsKindHasAnOutcome) {
  StatusBoard board;
  board.show(StatusRank::outcome, "lsc", "Saving...");
  board.show(StatusRank::failure, "port", "ttyUSB0 is gone.");
  EXPECT_EQ(board.latest(), "Saving...");
  board.show(StatusRank::failure, "lsc", "Nothing more reached the chip");
  EXPECT_EQ(board.latest(), "") << "what failed is no longer at it";
  board.show(StatusRank::text, "lsc", "Lens Shading");
  board.show(StatusRank::progress, "lsc", "10 %");
  EXPECT_EQ(failures(board), (Strings{"ttyUSB0 is gone.", "Nothing more reached the chip"}));
  board.show(StatusRank::outcome, "port", "ttyUSB0 is back.");
  EXPECT_EQ(failures(board), Strings{"Nothing more reached the chip"});
  EXPECT_EQ(board.latest(), "ttyUSB0 is back.");
  board.show(StatusRank::failure, "lsc", "Load failed");
  EXPECT_EQ(failures(board), Strings{"Load failed"}) << "one of a kind";
  board.show(StatusRank::outcome, "lsc", "");
  EXPECT_EQ(failures(board).size(), 1u) << "an empty text is no outcome";
  board.read();
  EXPECT_TRUE(board.failures().empty());
}

TEST(StatusBoard, RemembersWhatWasSaidWithItsTime) {
  std::chrono::system_clock::time_point now{};
  StatusBoard board([&now] { return now; });
  board.show(StatusRank::outcome, "form", "AE Info: 1 register sent");
  now += std::chrono::seconds(5);
  board.show(StatusRank::outcome, "form", "AE Info: 1 register sent");
  board.show(StatusRank::progress, "download", "1.0 of 2.0 KiB");
  board.show(StatusRank::text, "lsc", "");
  ASSERT_EQ(board.history().size(), 1u) << "neither progress nor an empty text";
  EXPECT_EQ(board.history()[0].times, 2u);
  EXPECT_EQ(board.history()[0].time, now);
  for (int i = 0; i < 600; ++i) board.show(StatusRank::failure, "form", std::to_string(i));
  EXPECT_EQ(board.history().size(), StatusBoard::kHistory);
  EXPECT_EQ(board.history().back().text, "599");
  EXPECT_EQ(sent_text("Reset", Traffic{isp_write(0x922, 0xCC)}), "Reset: 1 register sent")
      << "and no writes are counted";
}

}  // namespace
}  // namespace qv5123
