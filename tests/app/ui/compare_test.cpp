// The page "Compare", in the whole window on a simulated chip, used as a user uses it.
#include "app/ui/history_tool.h"
#include "console/setting_file.h"
#include "reliability/ui/matrix_bench.h"
#include "state/ui/compare_model.h"

namespace qv5123 {
namespace {

using Column = CompareModel::Column;

class CompareTest : public testing::Test {
 protected:
  CompareTest() {
    bench_.open(PageId::lsc);
    bench_.click("Load <- ISP");
    bench_.wire.advance(3000);
    bench_.control<QSpinBox>("Parameter-1 RED")->setValue(321);
    bench_.open(PageId::compare);
  }
  QTableView* table() { return bench_.control<QTableView>("Values"); }
  QVariant data(int row, Column column, int role) {
    return table()->model()->index(row, static_cast<int>(column)).data(role);
  }
  std::string cell(int row, Column column) {
    return data(row, column, Qt::DisplayRole).toString().toStdString();
  }
  std::string further_title() {
    const int section = static_cast<int>(Column::other);
    return table()->model()->headerData(section, Qt::Horizontal).toString().toStdString();
  }
  int rows() { return table()->model()->rowCount(); }
  std::string counts() { return bench_.widget().findChild<QLabel*>("value-count")->text().toStdString(); }
  void search(const char* words) { bench_.control<QLineEdit>("Search")->setText(words); }
  void show(int entry) { bench_.control<QComboBox>("Show")->setCurrentIndex(entry); }
  void choose_further(const char* text) {
    auto* list = bench_.control<QComboBox>("Further column");
    list->setCurrentIndex(list->findText(text));
    ASSERT_GE(list->currentIndex(), 0) << text;
    bench_.wire.advance(100);
  }
  QSpinBox* red1() {
    return test::find<QSpinBox>(*bench_.view->pages().page_widget(PageId::lsc), "Parameter-1 RED");
  }

  test::MatrixBench bench_;
};

TEST_F(CompareTest, ReadsAllPagesAndShowsWhatDiffers) {
  EXPECT_EQ(bench_.frame->findChild<QAction*>("compare")->shortcut(), QKeySequence("Ctrl+D"));
  EXPECT_EQ(rows(), 1) << "only of this page the chip is known";
  bench_.click("Read all from ISP");
  bench_.wire.advance(100);
  EXPECT_TRUE(bench_.control<QProgressBar>("Pages read")->isVisible());
  EXPECT_EQ(bench_.control<QProgressBar>("Pages read")->text(), "front, 1 of 6");
  bench_.wire.advance(10'000);
  EXPECT_FALSE(bench_.control<QProgressBar>("Pages read")->isVisible());
  EXPECT_EQ(bench_.statuses.back(), "6 pages read from the chip");
  ASSERT_EQ(rows(), 1);
  EXPECT_EQ(cell(0, Column::page) + " " + cell(0, Column::name) + " " + cell(0, Column::caption) + " " +
                cell(0, Column::in_page) + " " + cell(0, Column::on_chip) + "|" + cell(0, Column::in_file),
            "lsc parameter1.r Parameter-1 RED 321 1240|");
  EXPECT_EQ(red1()->value(), 321) << "what was typed stays";
  EXPECT_TRUE(data(0, Column::on_chip, Qt::BackgroundRole).isValid());

  show(1);
  search("lsc parameter-1");
  EXPECT_EQ(rows(), 3);
  table()->selectRow(1);
  EXPECT_TRUE(counts().starts_with("3 of ")) << counts();
  EXPECT_TRUE(counts().ends_with(", 1 chosen")) << counts();
  search("lsc green");
  EXPECT_EQ(table()->selectionModel()->selectedRows().value(0).data().toString(), "lsc") << "still chosen";
  test::PageDriver(bench_.widget()).expect_named_controls();

  bench_.click("Read all from ISP");
  bench_.wire.advance(100);
  bench_.click("Cancel");
  EXPECT_EQ(bench_.statuses.back(), "Reading cancelled");
  EXPECT_TRUE(bench_.control("Read all from ISP")->isEnabled());
}

TEST_F(CompareTest, ValuesGoBetweenPageAndChip) {
  bench_.click("Read all from ISP");
  bench_.wire.advance(10'000);
  table()->selectRow(0);
  bench_.user.answers = {Answer::no, Answer::yes};
  bench_.wire.sender.writes.clear();
  bench_.click("Page -> Chip...");
  EXPECT_NE(bench_.user.questions.back().text.find("lsc.parameter1.r: chip 1240, page 321\n"),
            std::string::npos);
  bench_.wire.advance(1000);
  EXPECT_EQ(bench_.wire.sender.wire(), "") << "declined";
  bench_.click("Page -> Chip...");
  bench_.wire.advance(1000);
  EXPECT_EQ(bench_.wire.sender.wire(), "@6401*@6441*@6404*@649c*@6405*@640a*") << "as the row's \"S\"";
  EXPECT_EQ(rows(), 0) << "the chip holds it now";

  show(1);
  search("lsc parameter1.r");
  EXPECT_EQ(data(0, Column::on_chip, Qt::AccessibleTextRole).toString(), "321, sent, not read back");
  search("gamma");
  table()->selectAll();
  bench_.click("Page -> Chip...");
  EXPECT_EQ(bench_.statuses.back(), "Page -> Chip: the pages of what is chosen hold nothing yet");
  search("");
  show(0);

  red1()->setValue(322);
  bench_.wire.advance(1000);
  ASSERT_EQ(rows(), 1);
  table()->selectRow(0);
  bench_.click("Chip -> Page");
  bench_.wire.advance(1000);
  EXPECT_EQ(red1()->value(), 321);
  EXPECT_EQ(bench_.frame->findChild<QAction*>("undo")->text(), "Undo Chip -> Page");
  bench_.frame->findChild<QAction*>("undo")->trigger();
  EXPECT_EQ(red1()->value(), 322);
}

TEST_F(CompareTest, ValuesOfSeveralPagesAreOneStep) {
  UserDataImage file = bench_.line.chip().state().user_data;
  file.set_word(440, 77);  // Parameter-1 RED
  file.set_word(45, 88);   // the gamma page's first point of red
  bench_.user.paths = {bench_.folder.write("board.dat", setting_text(file))};
  bench_.click_in_column("Load File...");
  bench_.wire.advance(100);
  red1()->setValue(5);
  bench_.wire.advance(2000);
  show(1);
  table()->selectAll();
  bench_.click("File -> Page");
  bench_.wire.advance(20'000);
  EXPECT_EQ(bench_.view->pages().current(), PageId::compare) << "the other pages were opened behind it";
  const TuningDesk* gamma = bench_.view->values().desk(bench_.view->values().page_named("gamma"));
  ASSERT_NE(gamma, nullptr);
  const std::vector<int> numbers = gamma->model().numbers();
  EXPECT_NE(std::find(numbers.begin(), numbers.end(), 88), numbers.end());
  EXPECT_EQ(red1()->value(), 77);
  show(3);
  EXPECT_EQ(rows(), 0) << "the pages are as the file";
  bench_.frame->findChild<QAction*>("undo")->trigger();
  EXPECT_EQ(red1()->value(), 5) << "all pages at once";
  EXPECT_EQ(bench_.frame->findChild<QAction*>("redo")->text(), "Redo File -> Page");
}

TEST_F(CompareTest, HasAFurtherColumn) {
  UserDataImage file;
  file.set_word(440, 30);
  UserDataImage other = file;
  other.set_word(442, 31);
  bench_.user.paths = {bench_.folder.write("board.dat", setting_text(file)),
                       bench_.folder.write("old.dat", setting_text(other)), bench_.folder / "gone.dat"};
  bench_.click_in_column("Load File...");
  bench_.wire.advance(100);
  choose_further("Setting file...");
  show(7);
  ASSERT_EQ(rows(), 1) << "two files, with nothing read from the chip";
  EXPECT_EQ(cell(0, Column::name) + cell(0, Column::other), "parameter1.g31");
  EXPECT_EQ(further_title(), "old.dat");
  table()->selectAll();
  bench_.click("Further -> Page");
  bench_.wire.advance(1000);
  const auto& pages = bench_.view->pages();
  EXPECT_EQ(test::find<QSpinBox>(*pages.page_widget(PageId::lsc), "Parameter-1 GREEN")->value(), 31);

  table()->clearSelection();
  bench_.click("Copy");
  EXPECT_TRUE(QApplication::clipboard()->text().endsWith("\t31\t1180\t0\t31\n"));
  bench_.user.paths.push_front(bench_.folder / "out.csv");
  bench_.click("Save CSV...");
  bench_.wire.advance(100);
  EXPECT_TRUE(bench_.folder.read("out.csv").ends_with(",31,1180,read,0,31\n"));
  choose_further("Setting file...");
  EXPECT_EQ(bench_.control<QComboBox>("Further column")->currentText(), "old.dat")
      << "the other is not there";

  bench_.view->compare_with({{"lsc.parameter1.b", 9}}, "12:00");
  EXPECT_EQ(further_title(), "Chip at 12:00");
  show(1);
  search("parameter1.b");
  EXPECT_EQ(cell(0, Column::other), "9");
  choose_further("Nothing else");
  EXPECT_EQ(table()->model()->columnCount(), CompareModel::kColumns - 1);
}

TEST_F(CompareTest, TheEndOfAnEarlierRunIsAFurtherColumn) {
  const std::string run = "writes-20251121-170000-1";
  bench_.folder.write(
      run + ".journal",
      journal_head({}) + "1763812800123\tlsc\tParameter-1\tparameter1.r=12>20\t6414\tsent\t1\t0\n");
  bench_.folder.write(
      run + "_0002.journal",
      journal_head({}) + "1763812800124\tlsc\tParameter-1\tparameter1.r=20>21\t6415\tsent\t1\t0\n");
  const HistoryTool history(*bench_.frame,
                            {*bench_.view, bench_.user, bench_.work, {}, bench_.folder.path()});
  bench_.open(PageId::lsc);
  bench_.open(PageId::compare);
  choose_further("End of run 2025-11-21 17:00:00 UTC");
  EXPECT_EQ(further_title(), "Run 2025-11-21 17:00:00");
  show(1);
  search("parameter1.r");
  EXPECT_EQ(cell(0, Column::other), "21") << "as its last file has it";
}

}  // namespace
}  // namespace qv5123
