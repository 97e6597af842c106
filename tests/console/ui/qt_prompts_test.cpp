#include "console/ui/qt_prompts.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace qv5123 {
namespace {

template <class Dialog>
Dialog* open_dialog() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* dialog = qobject_cast<Dialog*>(widget); dialog && dialog->isVisible()) return dialog;
  }
  return nullptr;
}

Task<> ask(Prompts& prompts, Question question, std::vector<Answer>& answers) {
  answers.push_back(co_await prompts.ask(std::move(question)));
}

TEST(QtPrompts, QuestionsArePlainTextAndResumeWithTheAnswer) {
  QtPrompts prompts;
  std::vector<Answer> answers;
  Flow flow(
      ask(prompts, {"a.dat<b>Save?</b>\r\n", "Save setting", Question::Buttons::yes_no_cancel}, answers));
  auto* box = open_dialog<QMessageBox>();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->text(), "a.dat<b>Save?</b>");
  EXPECT_EQ(box->textFormat(), Qt::PlainText);
  EXPECT_EQ(box->windowTitle(), "Save setting");
  box->button(QMessageBox::No)->click();
  QCoreApplication::processEvents();
  EXPECT_EQ(answers, std::vector<Answer>{Answer::no});

  flow.start(ask(prompts, {"?"}, answers));
  open_dialog<QMessageBox>()->reject();
  QCoreApplication::processEvents();
  EXPECT_EQ(answers.back(), Answer::cancel);

  flow.start(ask(prompts, {"?"}, answers));
  flow.cancel();
  EXPECT_EQ(open_dialog<QMessageBox>(), nullptr) << "a dialog goes with who waits for it";
}

Task<> choose(Prompts& prompts, bool save, FileChoice choice) {
  if (save) {
    co_await prompts.choose_save(std::move(choice));
  } else {
    co_await prompts.choose_open(std::move(choice));
  }
}

TEST(QtPrompts, ChoosersOfferTheFiltersInTheCurrentFolder) {
  EXPECT_EQ(name_filters("Setting Files (*.dat)|*.dat|All Files (*.*)|*.*||"),
            (QStringList{"Setting Files (*.dat)", "All Files (*)"}));
  EXPECT_EQ(name_filters("Binary file(*.bin)|*.bin"), QStringList{"Binary file (*.bin)"});
  EXPECT_EQ(name_filters("Images|*.png;*.bmp||"), QStringList{"Images (*.png *.bmp)"});

  QtPrompts prompts;
  Flow flow(choose(prompts, true, {"Setting Files (*.dat)|*.dat||", "dat", "board"}));
  auto* chooser = open_dialog<QFileDialog>();
  ASSERT_NE(chooser, nullptr);
  EXPECT_EQ(chooser->directory(), QDir::current());
  EXPECT_EQ(chooser->acceptMode(), QFileDialog::AcceptSave);
  EXPECT_EQ(chooser->defaultSuffix(), "dat");
  EXPECT_FALSE(chooser->testOption(QFileDialog::DontConfirmOverwrite));
  EXPECT_EQ(chooser->findChild<QLineEdit*>("fileNameEdit")->text(), "board");
  flow.start(choose(prompts, true, {"REG Files (*.txt)|*.txt||", "txt", "*.txt"}));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(open_dialog<QFileDialog>()->findChild<QLineEdit*>("fileNameEdit")->text(), "");
  flow.start(choose(prompts, false, {"Setting Files (*.dat)|*.dat||", "dat", ""}));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(open_dialog<QFileDialog>()->fileMode(), QFileDialog::ExistingFile);
}

}  // namespace
}  // namespace qv5123
