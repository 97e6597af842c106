// A disk that stands still while the program is to end.
#include <gtest/gtest.h>

#include <future>

#include "reliability/ui/real_program.h"

namespace qv5123 {
namespace {

/// Closes a program whose files are held up, and goes without them.
void end_without_disk(QMessageBox::StandardButton save, const QString& words) {
  const test::BoardFolder folder;
  std::promise<bool> disk;
  {
    test::RealProgram program(folder / "", true);
    program.wait_for_start();
    const std::function<bool()> work = [moves = disk.get_future().share()] { return moves.get(); };
    const Task<bool> held_up = program.view().background().run<bool>(work);
    program.program->frame()->close();
    test::answer_box("Do you want to save settings to file?", save);
    test::answer_box(words);
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
