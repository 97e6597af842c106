#include "app/ui/console_view.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFontDatabase>

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
  view.apply({false, 7 + 3, "end"});
  EXPECT_EQ(shown(view), all.substr(10) + "end") << "dropped, shown or queued";
  view.apply({true, 0, "new"});
  EXPECT_EQ(shown(view), "new");
}

TEST(ConsoleView, ShowsWhatCameBeforeItsFirstPictureBehindThat) {
  ConsoleView view;
  view.apply({false, 0, "greeting"});
  view.show();
  EXPECT_EQ(shown(view), "greeting");
  EXPECT_EQ(view.font().family(), QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
}

TEST(ConsoleView, BreaksALineThatNeverEndsAndStillDropsByTheText) {
  ConsoleView view;
  const std::string line(ConsoleView::kLongestLine, 'x');
  for (const std::string& text : {line, line, std::string("xxxxx")}) view.apply({false, 0, text});
  std::string broken = line;
  broken += '\n';
  broken += line;
  broken += "\nxxxxx";
  EXPECT_EQ(shown(view), broken);
  view.apply({false, 2 * ConsoleView::kLongestLine + 2, ""});
  EXPECT_EQ(shown(view), "xxx");

  ConsoleView exact;
  exact.apply({false, 0, line});
  exact.apply({false, 0, "\nnext"});
  EXPECT_EQ(shown(exact), line + "\nnext") << "a line that just fits is not broken";
}

}  // namespace
}  // namespace qv5123
