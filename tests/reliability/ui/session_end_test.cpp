// The end of the desktop session in the middle of a save, with all the program's threads.
#include <gtest/gtest.h>

#include <QtWidgets>

#include "app/ui/session_end.h"
#include "console/journal.h"
#include "reliability/ui/real_program.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

QWidget& open_page(test::RealProgram& real, PageId id) {
  real.view().pages().choose(id);
  return *real.view().pages().page_widget(id);
}

bool chip_keeps(test::RealProgram& real) {
  bool keeps = false;
  real.board->with_chip([&](SimulatedChip& chip) { keeps = keeping(chip.state()); });
  return keeps;
}

TEST(SessionEnd, ClosesTheSaveAndKeepsWhatIsUnsavedWithoutAQuestion) {
  const test::BoardFolder folder;
  test::RealProgram real(folder / "", true);
  real.wait_for_start();
  QObject owner;
  end_with_session(owner, [&] { real.program->end_unasked(); });
  test::find<QSpinBox>(open_page(real, PageId::lsc), "Parameter-1 RED")->setValue(37);
  test::find<QAbstractButton>(open_page(real, PageId::gamma), "File/Flash Save")->click();
  test::wait_until([&] { return chip_keeps(real); });

  auto* session = qApp->findChild<QSessionManager*>();
  ASSERT_NE(session, nullptr);
  emit qApp->commitDataRequest(*session);
  emit qApp->commitDataRequest(*session);  // a session that asks twice changes nothing
  EXPECT_EQ(real.ended, -1) << "the session is not held up by a nested loop";
  test::wait_until([&] { return real.ended >= 0; });
  EXPECT_EQ(real.ended, 0);
  EXPECT_EQ(test::visible<QDialog>(), nullptr);
  EXPECT_FALSE(chip_keeps(real));
  EXPECT_TRUE(fs::exists(Journal::slot_file(folder / "journal", 1)));
}

}  // namespace
}  // namespace qv5123
