// A disk that stands still while the program is to end.
#include <gtest/gtest.h>

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <future>

#include "reliability/ui/real_program.h"
#include "support/source_folder.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

/// Waits for a box with these words in it and answers.
void answer(const QString& words, QMessageBox::StandardButton button) {
  const auto there = [&] {
    auto* box = test::visible<QMessageBox>();
    return box && box->text().contains(words) ? box : nullptr;
  };
  test::wait_until([&] { return there() != nullptr; });
  there()->button(button)->click();
}

/// Closes a program whose files are held up, and goes without them.
void end_without_disk(QMessageBox::StandardButton save, const QString& words) {
  const test::CurrentFolder folder;
  std::filesystem::copy(test::source_folder() / "resources/regu.xml", folder / "regu.xml");
  std::filesystem::copy(test::source_folder() / "resources/sample.dat", folder / "board.dat");
  std::promise<bool> disk;
  {
    test::RealProgram program(folder / "", true);
    program.wait_for_start();
    const std::function<bool()> work = [moves = disk.get_future().share()] { return moves.get(); };
    const Task<bool> held_up = program.view().background().run<bool>(work);
    program.program->frame()->close();
    answer("Do you want to save settings to file?", save);
    answer(words, QMessageBox::Yes);
    test::wait_until([&] { return program.ended == 0; });
    disk.set_value(true);
  }
}

TEST(SlowDisk, HoldsUpNoEndThatTheUserWants) {
  end_without_disk(QMessageBox::Yes, "board.dat is still being written.");
  end_without_disk(QMessageBox::No, "Files are still being written.");
}

}  // namespace
}  // namespace qv5123
