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

}  // namespace
}  // namespace qv5123
