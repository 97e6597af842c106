// The program, killed: what was unsaved is there at the next start.
#include <gtest/gtest.h>

#include <QFileDialog>
#include <QSpinBox>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "console/journal.h"
#include "console/setting_file.h"
#include "content/ui/dlg_font_maker.h"
#include "reliability/ui/real_program.h"
#include "support/program.h"
#include "support/program_posix.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFolder = "QV5123_CRASH_FOLDER";
constexpr int kEdited = 37;

QSpinBox* edit_of(test::RealProgram& program) {
  PageArea& pages = program.view().pages();
  pages.choose(PageId::lsc);
  return test::find<QSpinBox>(*pages.page_widget(PageId::lsc), "Parameter-1 RED");
}

CDlgFontMaker& font_of(test::RealProgram& program) {
  PageArea& pages = program.view().pages();
  pages.choose(PageId::font_editor);
  auto& page = dynamic_cast<CDlgFontMaker&>(*pages.page_widget(PageId::font_editor));
  test::wait_until([&] { return !page.loading(); });
  return page;
}

/// The process that is killed. It edits two pages and goes on until then.
TEST(Crash, DISABLED_Victim) {
  const fs::path folder = qEnvironmentVariable(kFolder).toStdString();
  fs::current_path(folder);
  test::RealProgram real(folder, true);
  real.wait_for_start();
  test::find<QAbstractButton>(font_of(real), "Invert")->click();
  edit_of(real)->setValue(kEdited);
  test::wait_for_the_end();
}

TEST(Crash, OfTheKilledProgramTheNextStartOffersWhatWasUnsaved) {
  const test::BoardFolder folder;
  const fs::path kept = Journal::slot_file(folder / "journal", 1);
  qputenv(kFolder, QByteArray::fromStdString((folder / "").string()));
  test::Program victim(QCoreApplication::applicationFilePath().toStdString(),
                       {"--gtest_filter=Crash.DISABLED_Victim", "--gtest_also_run_disabled_tests"});
  for (int looks = 0; looks < 3000 && !fs::exists(kept); ++looks)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  ASSERT_TRUE(fs::exists(kept)) << "within a minute";
  victim.end(SIGKILL);

  test::RealProgram next(folder / "", false);
  test::wait_until([] { return test::visible<QMessageBox>() != nullptr; });
  auto* box = test::visible<QMessageBox>();
  EXPECT_TRUE(box->text().endsWith("board.dat")) << box->text().toStdString();
  EXPECT_TRUE(box->text().contains("Kept less than a minute ago (")) << box->text().toStdString();
  EXPECT_TRUE(
      box->text().contains(" UTC): 2 values that the setting file has otherwise.\n"
                           "The font that was edited is kept as well.\n"))
      << box->text().toStdString();
  box->button(QMessageBox::Yes)->click();
  next.wait_for_start();
  EXPECT_EQ(test::visible<QFileDialog>(), nullptr) << "a file would take the place of what was restored";
  EXPECT_EQ(edit_of(next)->value(), kEdited);
  EXPECT_EQ(next.view().document().setting_file.filename(), "board.dat");
  EXPECT_TRUE(fs::exists(Journal::slot_file(folder / "journal", 2))) << "it is unsaved still";
  EXPECT_FALSE(fs::exists(kept));

  EXPECT_EQ(font_of(next).editor().buffer().rows()[0], 0xFFFF);
  next.program->frame()->close();
  test::answer_box("Do you want to save settings to file?");
  test::answer_box("Glyph: 0x000 / 0 is drawn but not set.");
  test::wait_until([&] { return next.ended == 0; });
  EXPECT_FALSE(fs::exists(Journal::slot_file(folder / "journal", 2))) << "saved at its end";
  EXPECT_EQ(read_setting_file(folder / "board.dat").image, next.view().unsaved().image);
}

TEST(Crash, WhatIsKeptIsWhatASaveWouldWrite) {
  for (const PageId id :
       {PageId::gamma, PageId::awb_tune, PageId::dynamic_control, PageId::linear_matrix, PageId::lsc}) {
    test::MatrixBench bench;
    bench.open(id);
    bench.spoil_page(3);
    for (QSpinBox* box : bench.widget().findChildren<QSpinBox*>()) box->setValue(box->value() + 1);
    const UserDataImage told = bench.view->unsaved().image;
    SCOPED_TRACE(kPageEntries[static_cast<std::size_t>(id)].name);
    // What is typed into the matrix counts once it is set.
    EXPECT_EQ(told == bench.document.user_data, id == PageId::linear_matrix);
    bench.page().save_to_user_data();
    EXPECT_EQ(told, bench.document.user_data);
  }
}

/// What the process has open that the tables of network sockets know.
std::string network_sockets(qint64 process) {
  const fs::path about = fs::path("/proc") / std::to_string(process);
  std::string tables;
  for (const char* table : {"tcp", "tcp6", "udp", "udp6", "raw", "raw6"}) {
    std::ifstream file(about / "net" / table);
    tables.append(std::istreambuf_iterator<char>(file), {});
  }
  std::string found;
  for (const auto& entry : fs::directory_iterator(about / "fd")) {
    std::error_code gone;
    const std::string target = fs::read_symlink(entry, gone).string();
    if (!target.starts_with("socket:[")) continue;
    const std::string inode = " " + target.substr(8, target.size() - 9) + " ";
    if (tables.find(inode) != std::string::npos) found += inode;
  }
  return found;
}

TEST(Crash, TheRealProgramKeepsItsJournalBesideItsSettingsAndTalksToNoNetwork) {
  const test::TemporaryFolder folder;
  const fs::path journals = folder.path() / "Kestrova" / "QV5123";
  fs::create_directories(journals);
  JournalEntry entry;
  entry.image.set_entry(3, 4);
  ASSERT_TRUE(write_file_atomically(Journal::slot_file(journals, 1), journal_text(entry)).ok());
  QProcess program;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_CONFIG_HOME", QString::fromStdString(folder.path().string()));
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  program.setProcessEnvironment(environment);
  program.setWorkingDirectory(QString::fromStdString(folder.path().string()));
  program.start(QString::fromStdString((test::program_folder() / "QV5123").string()), {"--simulate"});
  // Its own lock comes before the question about the first.
  test::poll_until([&] { return fs::exists(journals / "unsaved-2.lock") || program.waitForFinished(20); });
  EXPECT_EQ(program.state(), QProcess::Running) << program.readAllStandardError().toStdString();
  EXPECT_EQ(network_sockets(program.processId()), "");
  program.kill();
  program.waitForFinished();
  EXPECT_TRUE(fs::exists(Journal::slot_file(journals, 1))) << "nobody has answered";
}

}  // namespace
}  // namespace qv5123
