#include "console/ui/qt_prompts.h"

#include <gtest/gtest.h>

#include <QtWidgets>

#include "base/ui/qt_text.h"
#include "support/page_driver.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

Task<> ask(Prompts& prompts, Question question, std::vector<Answer>& answers) {
  answers.push_back(co_await prompts.ask(std::move(question)));
}

TEST(QtPrompts, QuestionsResumeWithTheAnswer) {
  QtPrompts prompts;
  std::vector<Answer> answers;
  Flow flow(ask(prompts, {"Save?\r\n", "Save setting", Question::Buttons::yes_no_cancel}, answers));
  auto* box = test::visible<QMessageBox>();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->text(), "Save?");
  box->button(QMessageBox::No)->click();
  QCoreApplication::processEvents();
  flow.start(ask(prompts, {"?"}, answers));
  test::visible<QMessageBox>()->reject();
  QCoreApplication::processEvents();
  EXPECT_EQ(answers, (std::vector<Answer>{Answer::no, Answer::cancel}));

  Question careful = careful_question("Write over it?");
  careful.yes_text = "Write";
  flow.start(ask(prompts, careful, answers));
  box = test::visible<QMessageBox>();
  EXPECT_EQ(box->button(QMessageBox::Yes)->text(), "Write");
  EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::No));
  box->reject();
  QCoreApplication::processEvents();
  EXPECT_NE(answers.back(), Answer::yes) << "Escape is no Yes either";

  flow.start(ask(prompts, {"?"}, answers));
  flow.cancel();
  EXPECT_EQ(test::visible<QMessageBox>(), nullptr) << "a dialog goes with who waits for it";

  auto window = std::make_unique<QWidget>();
  prompts.set_parent(window.get());
  flow.start(ask(prompts, {"?"}, answers));
  window.reset();
  QCoreApplication::processEvents();
  EXPECT_FALSE(flow.running()) << "and nobody waits for one that is gone";
}

Task<> save(Prompts& prompts, FileChoice choice) {
  co_await prompts.choose_save(std::move(choice));
}

TEST(QtPrompts, ChoosersOfferTheFiltersAndANameThatIsNoPattern) {
  EXPECT_EQ(name_filters("Setting Files (*.dat)|*.dat|All Files (*.*)|*.*||"),
            (QStringList{"Setting Files (*.dat)", "All Files (*)"}));

  QtPrompts prompts;
  for (const auto& [initial, shown] : {std::pair{"board", "board"}, {"*.dat", ""}}) {
    const Flow flow(save(prompts, {"Setting Files (*.dat)|*.dat||", "dat", initial}));
    EXPECT_EQ(test::visible<QFileDialog>()->findChild<QLineEdit*>("fileNameEdit")->text(), shown);
  }
}

TEST(QtPrompts, ChoosersSayWhatForAndBeginWhereTheLastOfTheirKindEnded) {
  const test::TemporaryFolder folder;
  folder.write("a.bin", "1");
  QtPrompts prompts;
  const FileChoice font{"FONT Files (*.bin)|*.bin||", "bin", "", "Open a font file", "font"};
  const auto open = [&prompts](FileChoice choice) {
    return Flow([](Prompts& asked, FileChoice wanted) -> Task<> {
      co_await asked.choose_open(std::move(wanted));
    }(prompts, std::move(choice)));
  };
  {
    const Flow flow = open(font);
    auto* chooser = test::visible<QFileDialog>();
    EXPECT_EQ(chooser->windowTitle(), "Open a font file");
    chooser->selectFile(path_to_qt(folder.path() / "a.bin"));
    static_cast<QDialog*>(chooser)->accept();
    while (flow.running()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  {
    const Flow again = open(font);
    EXPECT_EQ(test::visible<QFileDialog>()->directory(), QDir(path_to_qt(folder.path())));
  }
  const QtPrompts::Folders gone = {{"font", "/no/such/folder"}};
  prompts.set_folders(gone);
  const Flow other = open(font);
  EXPECT_EQ(test::visible<QFileDialog>()->directory(), QDir::current()) << "a folder that is gone";
}

}  // namespace
}  // namespace qv5123
