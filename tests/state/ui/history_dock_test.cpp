#include "state/ui/history_dock.h"

#include <gtest/gtest.h>

#include <QtWidgets>
#include <map>

#include "state/ui/history_model.h"
#include "support/fake_prompts.h"
#include "support/inline_background.h"
#include "support/manual_scheduler.h"
#include "support/poll_until.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using test::FakePrompts;

WriteEvent event_of(int i) {
  WriteEvent event;
  event.page = "awb";
  event.control = "Slope";
  event.values = {{3, "a_slope", i, i + 1}};
  event.batches = {{{0x20, static_cast<std::uint8_t>(i)}}};
  event.result = {.chunks_sent = 1, .bytes_sent = 6};
  return event;
}

WriteEvent question() {
  WriteEvent event;
  event.batches = {{{0x36, 0}}};
  event.result = {.chunks_sent = 1, .bytes_sent = 6};
  return event;
}

struct DockBench {
  test::TemporaryFolder folder;
  test::ManualScheduler scheduler;
  test::InlineBackground background;
  FakePrompts user;
  std::vector<std::string> said;
  WriteHistory history;
  WriteJournalFiles files{
      scheduler, background, {folder.path(), std::chrono::system_clock::now, [](const std::string&) {}}};
  std::vector<KnownValues> backs;
  std::vector<KnownValues> compared;
  HistoryDock dock{
      history,
      {user, background, scheduler, [this](bool, const std::string& text) { said.push_back(text); },
       [this](KnownValues then, std::size_t unnamed, const std::string&) {
         backs.push_back(std::move(then));
         said.push_back(std::to_string(unnamed) + " unnamed");
       },
       [this](const KnownValues& then, const std::string&) { compared.push_back(then); }}};

  DockBench() {
    history.keep_in(files);
    dock.show();
  }
  HistoryModel& model() { return dock.model(); }
  std::string cell(int row, HistoryModel::Column column) {
    return model()
        .data(model().index(row, static_cast<int>(column)), Qt::DisplayRole)
        .toString()
        .toStdString();
  }
  void settle() {
    test::poll_until([&] {
      if (model().settled()) return true;
      QApplication::processEvents();
      return false;
    });
  }
  void search(const char* words) {
    dock.findChild<QLineEdit*>()->setText(words);
    settle();
  }
  void click(const char* name) {
    for (auto* button : dock.findChildren<QPushButton*>())
      if (button->text() == name) button->click();
  }
  void choose(int index) {
    dock.findChild<QComboBox*>()->setCurrentIndex(index);
    QApplication::processEvents();
    settle();
  }
};

TEST(HistoryDock, ShowsWhatLeftAndFindsIt) {
  DockBench bench;
  bench.history.note(event_of(1));
  bench.history.note(question());
  bench.history.note(event_of(41));
  EXPECT_EQ(bench.model().rowCount(), 2);
  EXPECT_EQ(bench.cell(1, HistoryModel::Column::control), "Slope");
  EXPECT_EQ(bench.cell(1, HistoryModel::Column::values), "a_slope 41 -> 42");
  EXPECT_EQ(bench.cell(1, HistoryModel::Column::result), "sent");
  bench.dock.findChild<QCheckBox*>()->setChecked(true);
  EXPECT_EQ(bench.model().rowCount(), 3);
  bench.search("SLOPE 42");
  EXPECT_EQ(bench.model().rowCount(), 1);
  EXPECT_EQ(bench.dock.findChild<QLabel*>("write-count")->text(), "1 of 3 writes");

  bench.search("");
  const int many = 3 * static_cast<int>(HistoryModel::kPiece);
  for (int i = 0; i < many; ++i) bench.history.note(event_of(i));
  bench.search("a_slope");
  EXPECT_EQ(bench.model().rowCount(), 2 + many) << "piece after piece";
}

TEST(HistoryDock, CopiesAndSavesWhatIsSelected) {
  DockBench bench;
  for (int i = 1; i <= 3; ++i) bench.history.note(event_of(i));
  bench.click("Copy");
  EXPECT_EQ(QApplication::clipboard()->text().count("a_slope"), 3) << "all where nothing is selected";
  bench.dock.findChild<QTableView*>()->selectRow(1);
  bench.click("Copy");
  EXPECT_TRUE(QApplication::clipboard()->text().endsWith("awb  Slope  a_slope 2 -> 3  2002  sent\n"));

  for (const auto& [format, begins] :
       std::map<std::string, std::string>{{"Text...", "20"},
                                          {"CSV...", "time,page"},
                                          {"JSON lines...", "{\"time\":"},
                                          {"Register script...", "# QV5123"}}) {
    bench.user.paths = {bench.folder / format};
    for (QAction* action : bench.dock.findChild<QMenu*>()->actions())
      if (action->text().toStdString() == format) action->trigger();
    QApplication::processEvents();
    const std::string saved = bench.folder.read(format);
    EXPECT_EQ(saved.rfind(begins, 0), 0u) << saved;
    EXPECT_EQ(saved.find("a_slope 3"), std::string::npos) << "not selected";
    EXPECT_EQ(bench.said.back(), format + ": 1 write saved");
  }
}

TEST(HistoryDock, GoesBackToOneWriteThatIsSelected) {
  DockBench bench;
  for (int i = 1; i <= 3; ++i) bench.history.note(event_of(i));
  WriteEvent raw = event_of(9);
  raw.values.clear();
  bench.history.note(raw);
  bench.history.note(question());
  auto* table = bench.dock.findChild<QTableView*>();
  bench.click("Back to here...");
  table->selectAll();
  bench.click("Back to here...");
  EXPECT_TRUE(bench.backs.empty()) << "one must be chosen";
  table->clearSelection();
  table->selectRow(1);
  bench.click("Back to here...");
  EXPECT_EQ(bench.backs, (std::vector<KnownValues>{{{"awb.a_slope", 3}}}));
  EXPECT_EQ(bench.said.back(), "1 unnamed");
  bench.click("Compare");
  EXPECT_EQ(bench.compared, bench.backs);
}

TEST(HistoryDock, OpensEarlierRunsAndOtherFiles) {
  DockBench bench;
  const std::string line = journal_line(record_of(event_of(7), std::chrono::system_clock::now()));
  bench.folder.write("writes-20251121-170000-1.journal", journal_head({}) + line + "\n" + line);
  bench.history.note(event_of(1));
  bench.dock.hide();
  bench.dock.show();
  QApplication::processEvents();
  auto* source = bench.dock.findChild<QComboBox*>();
  ASSERT_EQ(source->count(), 3);
  EXPECT_EQ(source->itemText(1), "2025-11-21 17:00:00 UTC, 1 KB");
  bench.choose(1);
  EXPECT_EQ(bench.model().rowCount(), 1);
  EXPECT_EQ(bench.cell(0, HistoryModel::Column::values), "a_slope 7 -> 8");
  EXPECT_EQ(bench.said.back(), "writes-20251121-170000-1.journal: Its last write is cut and left out.");
  bench.history.note(event_of(2));
  EXPECT_EQ(bench.model().rowCount(), 1) << "of the run that is shown";

  bench.user.paths = {bench.folder.write("foreign", "1\n2\n")};
  bench.choose(2);
  EXPECT_EQ(bench.model().rowCount(), 0);
  EXPECT_EQ(bench.said.back(), "foreign: This is no journal of writes.");
  EXPECT_EQ(source->currentText(), "foreign");
  bench.choose(0);
  EXPECT_EQ(bench.model().rowCount(), 2);
}

}  // namespace
}  // namespace qv5123
