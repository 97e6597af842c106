#include "console/ui/console_view.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace qv5123 {
namespace {

std::string shown(ConsoleView& view) {
  while (!view.settled()) QCoreApplication::processEvents();
  return view.toPlainText().toStdString();
}

TEST(ConsoleView, FollowsChangesInOrderThroughManySlices) {
  ConsoleView view;
  std::string all;
  for (int i = 0; i < 3000; ++i) {
    const std::string line = "line " + std::to_string(i) + "\n";
    all += line;
    view.apply({false, 0, line});
  }
  EXPECT_EQ(shown(view), all);
  view.apply({false, 7 + 3, ""});
  EXPECT_EQ(shown(view), all.substr(10));
  view.apply({true, 0, "new"});
  EXPECT_EQ(shown(view), "new");
}

TEST(ConsoleView, DropsWhatIsQueuedWhereTheShownTextIsShorter) {
  ConsoleView view;
  view.apply({false, 0, "ab\ncd\n"});
  view.apply({false, 4, "ef\n"});
  EXPECT_EQ(shown(view), "d\nef\n");
  view.apply({false, 0, "gh\n"});
  view.apply({false, 6, "ij"});
  EXPECT_EQ(shown(view), "h\nij");
}

TEST(ConsoleView, BreaksALineThatNeverEndsAndStillDropsByTheText) {
  ConsoleView view;
  const std::string line(ConsoleView::kLongestLine, 'x');
  std::string endless = line;
  endless += line;
  endless += "xxxxx";
  view.apply({false, 0, endless});
  std::string broken = line;
  broken += '\n';
  broken += line;
  broken += "\nxxxxx";
  EXPECT_EQ(shown(view), broken);
  view.apply({false, 2 * ConsoleView::kLongestLine + 2, ""});
  EXPECT_EQ(shown(view), "xxx");

  ConsoleView exact;
  exact.apply({false, 0, line});
  EXPECT_EQ(shown(exact), line);
  exact.apply({false, 0, "\nnext"});
  EXPECT_EQ(shown(exact), line + "\nnext") << "a line that just fits is not broken";
  exact.apply({false, ConsoleView::kLongestLine + 1, ""});
  EXPECT_EQ(shown(exact), "next");
}

}  // namespace
}  // namespace qv5123
