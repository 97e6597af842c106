#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtWidgets>
#include <map>
#include <set>

#include "app/ui/help_window.h"
#include "app/ui/window_actions.h"
#include "app/ui/window_bench.h"
#include "base/ui/page_marks.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

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

using Owners = std::map<QChar, const QAbstractButton*>;

/// Whether there would be a letter for the button if others took other ones.
bool could_have_one(const QAbstractButton* button, const Owners& owners, std::set<QChar>& seen) {
  for (const QChar each : button->text()) {
    const QChar letter = each.toUpper();
    if (!letter.isLetterOrNumber() || !seen.insert(letter).second) continue;
    const auto owner = owners.find(letter);
    if (owner == owners.end() || could_have_one(owner->second, owners, seen)) return true;
  }
  return false;
}

/// Those that can only be pressed by a letter.
bool needs_one(const QAbstractButton* button) {
  const QByteArray command = button->property(kCommand).toByteArray();
  return qobject_cast<const QPushButton*>(button) && !button->property(kSetsTheEditsBeside).toBool() &&
         command != kLoadCommand && command != kSaveCommand;
}

TEST(Keyboard, EveryButtonOfAPageHasALetterOfItsOwnThatCan) {
  Typist typist;
  const auto letter_of = [](const QString& text) {
    const QKeySequence key = QKeySequence::mnemonic(text);
    return key.isEmpty() ? QChar() : QChar(key.toString().back());
  };
  std::set<QChar> menu{QChar()};
  for (const QAction* action : typist.frame->menuBar()->actions()) menu.insert(letter_of(action->text()));
  for (const PageEntry& entry : kPageEntries) {
    const QWidget& page = typist.choose(entry.id);
    std::set<QChar> others = menu;
    for (const QLabel* label : page.findChildren<QLabel*>()) {
      const QChar letter = label->buddy() ? letter_of(label->text()) : QChar();
      if (letter.isNull()) continue;
      EXPECT_TRUE(others.insert(letter).second) << label->text().toStdString();
    }
    std::set<QChar> taken = others;
    Owners owners;
    std::vector<const QAbstractButton*> without;
    for (const auto* button : page.findChildren<QAbstractButton*>()) {
      const QChar letter = letter_of(button->text());
      if (letter.isNull()) {
        if (needs_one(button)) without.push_back(button);
        continue;
      }
      EXPECT_TRUE(taken.insert(letter).second) << entry.name << ": " << button->text().toStdString();
      if (needs_one(button)) owners[letter] = button;
    }
    for (const auto* button : without) {
      std::set<QChar> seen = others;
      EXPECT_FALSE(could_have_one(button, owners, seen))
          << entry.name << ": " << button->accessibleName().toStdString();
    }
  }
}

TEST(Keyboard, EveryKeyIsInTheHelpAndEscapeClosesIt) {
  Typist typist;
  HelpWindow help;
  help.tell_keys([&typist] { return shortcuts_markdown(*typist.frame); });
  help.show_topic("keyboard");
  for (const char* part : {"Ctrl+S", "Save setting file", "Ctrl+Return"})
    EXPECT_THAT(help.browser().toPlainText().toStdString(), HasSubstr(part));

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
