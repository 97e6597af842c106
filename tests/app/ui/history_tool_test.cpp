// The journal of writes in the whole window on a simulated chip: what it hears, and the way back.
#include "app/ui/history_tool.h"

#include "reliability/ui/matrix_bench.h"

namespace qv5123 {
namespace {

class HistoryToolTest : public testing::Test {
 protected:
  HistoryToolTest() {
    bench_.open(PageId::lsc);
    bench_.click("Load <- ISP");
    bench_.wire.advance(3000);
  }
  QSpinBox* edit(const char* name) { return bench_.control<QSpinBox>(name); }
  void send_row(int red) {
    edit("Parameter-1 RED")->setValue(red);
    bench_.click("Parameter-1 S");
    bench_.wire.advance(1000);
  }
  /// What left after "Back to here..." on the first write.
  std::string sent_by_way_back() {
    auto* dock = bench_.frame->findChild<HistoryDock*>();
    bench_.frame->show();
    dock->show();
    EXPECT_GT(dock->sizeHint().height(), 200) << "it has its content before it has its place";
    dock->findChild<QTableView*>()->selectRow(0);
    bench_.wire.sender.writes.clear();
    for (auto* button : dock->findChildren<QPushButton*>())
      if (button->text() == "Back to here...") button->click();
    bench_.wire.advance(1000);
    return bench_.wire.sender.wire();
  }

  test::MatrixBench bench_;
  HistoryTool tool_{*bench_.frame, {*bench_.view, bench_.user, bench_.work, {}, {}}};
};

TEST_F(HistoryToolTest, BackToHereSendsTheRowAsItWasThenAndAnotherConnectionIsNoted) {
  send_row(20);
  send_row(30);
  edit("Parameter-1 GREEN")->setValue(77);
  bench_.user.answers = {Answer::no, Answer::yes};
  EXPECT_EQ(sent_by_way_back(), "");
  EXPECT_EQ(edit("Parameter-1 RED")->value(), 30) << "declined";
  EXPECT_EQ(bench_.user.questions.back().text,
            "1 value differs from that moment:\n\nlsc.parameter1.r: chip 30, then 20\n\n"
            "Send 6 register writes, in some 0.1 s? The pages take the values, too.");
  EXPECT_EQ(sent_by_way_back(), "@6400*@6414*@6404*@649c*@6405*@640a*") << "without the green that was typed";
  EXPECT_EQ(edit("Parameter-1 RED")->value(), 20);
  EXPECT_EQ(edit("Parameter-1 GREEN")->value(), 1180);

  bench_.wire.sender.writes.clear();
  bench_.frame->findChild<QAction*>("undo")->trigger();
  bench_.wire.advance(1000);
  EXPECT_EQ(bench_.wire.sender.wire(), "@6400*@641e*@6400*@644d*@6405*@640a*");
  EXPECT_EQ(edit("Parameter-1 RED")->value(), 30);

  bench_.wire.link.connection_changed();
  bench_.wire.advance(100);
  const WriteJournal& journal = tool_.history().journal();
  EXPECT_TRUE(is_connection(journal.at(journal.size() - 1)));
}

}  // namespace
}  // namespace qv5123
