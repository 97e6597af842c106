// What did not work stays in sight beside what is said of something else.
#include "reliability/ui/matrix_bench.h"
#include "tuning/picker.h"

namespace qv5123 {
namespace {

using test::MatrixBench;

TEST(StandingFailures, ABrokenSaveStandsBesideWhatThePickerSays) {
  MatrixBench bench;
  bench.open(PageId::linear_matrix);
  bench.click("Enable Color Picker");
  bench.wire.advance(5000);
  bench.click("File/Flash Save");
  bench.wire.advance(400);
  const auto port_is = [&bench](bool there) {
    bench.wire.sender.connected = there;
    bench.wire.link.connection_changed();
    bench.wire.advance(20'000);
  };
  const auto& failures = bench.view->board().failures();
  port_is(false);
  ASSERT_EQ(failures.size(), 2u);
  EXPECT_TRUE(failures[0].text.starts_with("Nothing more reached the chip: the port failed after "));
  EXPECT_TRUE(failures[1].text.starts_with("Color picker: ")) << failures[1].text;
  port_is(true);
  EXPECT_EQ(bench.view->board().latest(), kPickerOffAfterLoss);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_TRUE(failures[0].text.starts_with("Nothing more reached the chip: "));
}

TEST(StandingFailures, WhatAReadBackMissesStaysUntilItsPageIsSavedAgainAndIsListed) {
  MatrixBench bench;
  const auto& pane = *bench.frame->findChild<QLabel*>("verification");
  const auto save = [&bench](PageId page, bool verified) {
    bench.open(page);
    bench.view->values().verify_saves(verified);
    bench.click("File/Flash Save");
    bench.wire.advance(20'000);
  };
  bench.open(PageId::lsc);
  bench.control<QSpinBox>("Parameter-1 RED")->setValue(322);
  const auto line = bench.wire.sender.chip;
  bench.wire.sender.chip = [line](const std::string& bytes) {
    if (bytes != "@6401*@6442*") line(bytes);
  };
  save(PageId::lsc, true);
  // One of six writes to one register: those behind it take its place.
  const std::string differs = "2 of 6 values differ: Parameter-1 RED";
  EXPECT_TRUE(pane.text().toStdString().starts_with(differs)) << pane.text().toStdString();
  const StatusMessage& last = bench.view->board().history().back();
  EXPECT_TRUE(last.text.starts_with("LSC: " + differs)) << last.text;
  EXPECT_EQ(last.rank, StatusRank::failure);
  EXPECT_TRUE(bench.view->board().failures().empty()) << "it is shown in one place";

  save(PageId::awb_tune, false);
  EXPECT_TRUE(pane.isVisible() && pane.text().toStdString().starts_with(differs));
  EXPECT_TRUE(test::find<QPushButton>(*bench.frame, "Send these again")->isVisible());
  save(PageId::lsc, false);
  EXPECT_FALSE(pane.isVisible());
}

}  // namespace
}  // namespace qv5123
