#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QMenuBar>
#include <QTextBrowser>

#include "app/ui/help_window.h"
#include "app/ui/window_actions.h"
#include "app/ui/window_bench.h"
#include "base/ui/page_marks.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

using testing::Contains;
using testing::HasSubstr;

/// Somebody without a mouse.
struct Typist : test::WindowBench {
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* at = QApplication::focusWidget();
    QTest::keyClick(at ? at : frame.get(), key, modifiers);
    wire.advance(3000);
    QCoreApplication::processEvents();
  }
  /// Presses the tab key until the control of that name has the keyboard.
  void go_to(const char* name) {
    for (int stops = 0; stops < 400; ++stops) {
      const QWidget* at = QApplication::focusWidget();
      if (at && at->accessibleName() == name) return;
      press(Qt::Key_Tab);
    }
    ADD_FAILURE() << "the tab key does not reach " << name;
  }
  void type(const char* text) {
    press(Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), text);
  }
  std::string sent() {
    std::string all = wire.sender.wire();
    wire.sender.writes.clear();
    return all;
  }
};

TEST(Keyboard, DoesAWholeTuningJob) {
  Typist typist;
  UserDataImage image;
  image.set_entry(440, 5);
  const auto file = typist.folder.write("board.dat", setting_text(image));
  typist.user.paths = {file};
  typist.press(Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(typist.document.setting_file, file);

  typist.press(Qt::Key_4, Qt::ControlModifier);
  EXPECT_EQ(typist.view->pages().current(), PageId::lsc);
  typist.sent();
  typist.press(Qt::Key_L, Qt::ControlModifier);
  EXPECT_THAT(typist.sent(), HasSubstr("@6b00*")) << "reads the page";
  typist.press(Qt::Key_F5);
  EXPECT_THAT(typist.sent(), HasSubstr("@6b00*"));

  typist.go_to("Parameter-1 RED");
  typist.type("258");
  typist.press(Qt::Key_Return);
  EXPECT_THAT(typist.sent(), HasSubstr("@6401*@6402*")) << "as the \"S\" beside it";
  EXPECT_THAT(QApplication::focusWidget()->toolTip().toStdString(), HasSubstr("Return: \"S\""));
  typist.user.answers = {Answer::yes};  // nobody answered what the page asked the chip for
  typist.press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_THAT(typist.sent(), HasSubstr("@6401*@6402*")) << "the full save";
  EXPECT_TRUE(typist.user.saves.empty());
  typist.press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_NE(typist.folder.read("board.dat"), setting_text(image));

  const auto other = typist.folder.path() / "other.dat";
  typist.user.paths = {other};
  typist.press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(typist.folder.read("other.dat"), typist.folder.read("board.dat"));
  const std::size_t asked = typist.user.questions.size();
  typist.press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(typist.user.questions.size(), asked);
  typist.press(Qt::Key_1, Qt::ControlModifier);
  EXPECT_EQ(typist.view->pages().current(), PageId::registers);
}

TEST(Keyboard, AButtonHasItsLetterAgainAfterACaptionWithoutIt) {
  Typist typist;
  auto* button = test::find<QPushButton>(typist.choose(PageId::linear_matrix), "Measure all 24");
  const QString before = button->text();
  EXPECT_TRUE(before.contains('&'));
  set_caption(button, "...");
  EXPECT_EQ(button->text(), "...");
  set_caption(button, "Measure all 24");
  EXPECT_EQ(button->text(), before);
}

TEST(Keyboard, EveryButtonOfAPageHasALetterOfItsOwn) {
  Typist typist;
  std::set<QChar> menu;
  for (const QAction* action : typist.frame->menuBar()->actions()) {
    const QKeySequence key = QKeySequence::mnemonic(action->text());
    if (!key.isEmpty()) menu.insert(key.toString().back());
  }
  for (const PageEntry& entry : kPageEntries) {
    std::set<QChar> taken = menu;
    QStringList without;
    for (const QAbstractButton* button : typist.choose(entry.id).findChildren<QAbstractButton*>()) {
      const QKeySequence key = QKeySequence::mnemonic(button->text());
      if (!key.isEmpty()) {
        EXPECT_TRUE(taken.insert(key.toString().back()).second)
            << entry.name << ": " << button->text().toStdString();
      } else if (qobject_cast<const QPushButton*>(button) && button->text().size() > 3) {
        without << button->text();
      }
    }
    for (const QString& text : without) {
      const auto free = [&taken](QChar letter) {
        return letter.isLetterOrNumber() && !taken.count(letter.toUpper());
      };
      EXPECT_TRUE(std::none_of(text.begin(), text.end(), free)) << entry.name << ": " << text.toStdString();
    }
  }
}

TEST(Keyboard, ArrowsGoOnWhileTheyAreHeldDown) {
  test::WindowBench bench;
  const auto repeats = [](const QWidget& in, const char* name) {
    return test::find<QAbstractButton>(in, name)->autoRepeat();
  };
  EXPECT_TRUE(repeats(*bench.frame, "OSD Up"));
  EXPECT_FALSE(repeats(*bench.frame, "OSD Set"));
  EXPECT_TRUE(repeats(bench.choose(PageId::lsc), "LEFT"));
  EXPECT_TRUE(repeats(bench.choose(PageId::awb_tune), "UP"));
}

TEST(Keyboard, EveryKeyIsInTheHelpAndEscapeClosesIt) {
  Typist typist;
  HelpWindow help;
  help.tell_keys([&typist] { return shortcuts_markdown(*typist.frame); });
  help.show_topic("keyboard");
  const std::string text = help.browser().toPlainText().toStdString();
  for (const char* part :
       {"Ctrl+S", "Save setting file", "F9", "Ctrl+Return", "Load <- ISP", "Ctrl+7", "DynamicControl"})
    EXPECT_THAT(text, HasSubstr(part));

  // The links of the first steps are commands that the window has.
  help.show_topic("first-steps");
  int commands = 0;
  for (const QString& part : help.browser().document()->toHtml().split("href=\"do:").mid(1)) {
    const QString name = part.left(part.indexOf('"'));
    EXPECT_NE(typist.frame->findChild<QAction*>(name), nullptr) << name.toStdString();
    ++commands;
  }
  EXPECT_EQ(commands, 10);
  help.show();
  help.activateWindow();
  QCoreApplication::processEvents();
  QTest::keyClick(&help, Qt::Key_Escape);
  EXPECT_FALSE(help.isVisible());
}

}  // namespace
}  // namespace qv5123
