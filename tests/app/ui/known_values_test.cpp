// What the window shows of what is known of the values: marks, dots and the star, the read-back after a save,
// and the steps that can be undone.
#include <QtTest>

#include "reliability/ui/matrix_bench.h"
#include "tuning/ui/mark_strip.h"

namespace qv5123 {
namespace {

class KnownValues : public testing::Test {
 protected:
  KnownValues() {
    bench_.open(PageId::lsc);
    bench_.frame->activateWindow();
    QCoreApplication::processEvents();
  }
  QSpinBox* red1() { return bench_.control<QSpinBox>("Parameter-1 RED"); }
  /// "unsent chip", of the mark at the edit.
  std::string mark() {
    const auto* strip = red1()->findChild<MarkStrip*>();
    if (!strip || strip->isHidden()) return "";
    const ValueMark& mark = strip->mark();
    return std::string(mark.unsent ? "unsent " : "") + (mark.differs_from_chip ? "chip " : "") +
           (mark.differs_from_file ? "file" : "");
  }
  std::string item() { return bench_.view->pages().actions_in_order()[3]->text().toStdString(); }
  QLabel* label(const char* name) { return bench_.frame->findChild<QLabel*>(name); }
  QAction* action(const char* name) { return bench_.frame->findChild<QAction*>(name); }
  void key(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(widget, static_cast<Qt::Key>(key), modifiers);
    bench_.wire.advance(2000);
  }
  void type(int number) {
    red1()->setValue(number);
    bench_.wire.advance(2000);
  }

  test::MatrixBench bench_;
};

TEST_F(KnownValues, MarksDotAndStarFollowAValue) {
  const std::string range = "0..4095 (1024 is 1.0), register 0x64", return_key = ". Return: \"S\"";
  const auto tip = [this] { return red1()->toolTip().toStdString(); };
  EXPECT_EQ(item(), "&LSC");
  type(321);
  EXPECT_EQ(mark(), "unsent ");
  EXPECT_EQ(red1()->accessibleDescription(), "Not sent");
  EXPECT_EQ(item(), "&LSC\u2022");
  bench_.click("Parameter-1 S");
  bench_.wire.advance(1000);
  EXPECT_EQ(mark(), "");
  EXPECT_EQ(tip(), range + return_key);
  EXPECT_EQ(item(), "&LSC");

  bench_.user.paths = {bench_.folder.write("board.dat", setting_text(bench_.document.user_data))};
  bench_.click_in_column("Load File...");
  bench_.wire.advance(1000);
  EXPECT_EQ(mark(), "unsent chip ") << "the file's value came into the page";
  EXPECT_EQ(label("setting-file")->text(), "board.dat");
  type(322);
  EXPECT_EQ(mark(), "unsent chip file");
  EXPECT_EQ(red1()->accessibleDescription(), "Not sent. Chip 321, file 0");
  EXPECT_EQ(label("setting-file")->text(), "board.dat *");
  bench_.wire.link.connection_changed();
  bench_.wire.advance(10);
  EXPECT_EQ(mark(), "unsent file");
  EXPECT_EQ(tip(), range + "\nNot sent. File 0" + return_key) << "and nothing of the marks before";
  EXPECT_EQ(red1()->accessibleDescription(), "Not sent. File 0");
}

TEST_F(KnownValues, TheWholeUserDataAndARegisterFileAreReadBackAndRepaired) {
  action("verify-saves")->setChecked(true);
  UserDataImage data = bench_.line.chip().state().user_data;
  data.set_word(440, 321);
  bench_.user.paths = {bench_.folder.write("board.dat", setting_text(data))};
  // The chip takes the image, and then has another value.
  const auto line = bench_.wire.sender.chip;
  bool spoilt = false;
  bench_.wire.sender.chip = [&](const std::string& bytes) {
    if (bytes == "@6b00*" && !std::exchange(spoilt, true)) line("@6400*@6463*@6404*@649c*@6405*@640a*");
    line(bytes);
  };
  bench_.click_in_column("System");
  bench_.wire.advance(60'000);
  auto* repair = test::find<QPushButton>(*bench_.frame, "Send these again");
  const auto pane = [this] { return label("verification")->toolTip().toStdString(); };
  EXPECT_NE(pane().find(" differs: lsc Parameter-1 RED (sent 321, chip 99)"), std::string::npos) << pane();
  ASSERT_TRUE(repair->isVisible());
  repair->click();
  bench_.wire.advance(60'000);
  EXPECT_NE(pane().find("Verified: "), std::string::npos) << pane();
  EXPECT_FALSE(repair->isVisible());
  EXPECT_EQ(bench_.line.chip().state().kept_data.word(440), 321);
  bench_.wire.sender.chip = line;

  bench_.open(PageId::registers);
  bench_.user.paths = {bench_.folder.write("some.txt", "0xF800=0x1A //MODE\n0xF801=0x2B //GAIN\n")};
  bench_.click("Load REG from File to ISP...");
  bench_.wire.advance(20'000);
  EXPECT_EQ(label("verification")->text(), "Verified: 2 of 2 values");
}

TEST_F(KnownValues, KeysUndoStepsButFirstWhatIsBeingTyped) {
  type(321);
  type(322);
  EXPECT_EQ(action("undo")->text(), "Undo Parameter-1 RED");
  red1()->setFocus();
  red1()->selectAll();
  QTest::keyClicks(red1(), "9");
  key(red1(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(red1()->text(), "322") << "the text, not the step";
  key(red1(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(red1()->value(), 321);
  key(red1(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(red1()->value(), 322);
  action("undo")->trigger();
  action("undo")->trigger();
  EXPECT_EQ(red1()->value(), 0);
  EXPECT_FALSE(action("undo")->isEnabled());
  EXPECT_EQ(action("redo")->text(), "Redo Parameter-1 RED");
}

TEST_F(KnownValues, UndoTakesBackWhatItNamesOfThePageFirst) {
  const auto undo = [this] {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier);
    bench_.wire.advance(2000);
    return action("undo")->text().toStdString();
  };
  QSpinBox* red = red1();
  type(321);
  bench_.open(PageId::registers);
  auto* bit = bench_.control("Bit 0");
  const bool was = bit->isChecked();
  bit->click();
  bit->setFocus();
  EXPECT_EQ(action("undo")->text(), "Undo 0xF800's value");
  EXPECT_EQ(undo(), "Undo Parameter-1 RED");
  EXPECT_EQ(bit->isChecked(), was);
  EXPECT_EQ(red->value(), 321) << "nothing that was not named";
  key(bit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(bit->isChecked(), !was);
  bench_.open(PageId::font_editor);
  bench_.click("Invert");
  EXPECT_EQ(action("undo")->text(), "Undo change of the font");
  EXPECT_EQ(undo(), "Undo Parameter-1 RED");
  EXPECT_EQ(action("redo")->text(), "Redo change of the font");
  bench_.widget().hide();
  EXPECT_FALSE(action("redo")->isEnabled()) << "the page is closed";
  EXPECT_EQ(undo(), "Undo");
  EXPECT_EQ(red->value(), 0);
}

TEST_F(KnownValues, TheQuestionAtTheEndTellsWhatASaveWouldChange) {
  const auto detail = [this] {
    bench_.view->request_exit();
    bench_.wire.advance(100);
    return bench_.user.questions.back().detail;
  };
  bench_.document.setting_file.clear();
  EXPECT_EQ(detail(), "No setting file is in use: Yes asks for one.");
  bench_.user.paths = {bench_.folder.write("board.dat", setting_text(bench_.document.user_data))};
  bench_.click_in_column("Load File...");
  bench_.wire.advance(1000);
  EXPECT_EQ(detail(), "board.dat has all of it already.");
  type(321);
  EXPECT_EQ(detail(), "2 of the 1024 numbers in board.dat are to change.");
}

TEST_F(KnownValues, PagesOlderThanAChipThatWasResetOfferToReadIt) {
  auto* save = test::find<QPushButton>(*bench_.view->pages().page_widget(PageId::lsc), "File/Flash Save");
  bench_.document.setting_file = "/home/me/board.dat";
  QHelpEvent hover(QEvent::ToolTip, QPoint(1, 1), QPoint(1, 1));
  QApplication::sendEvent(save, &hover);
  EXPECT_TRUE(save->toolTip().contains(
      "setting file board.dat, and the font editor's text export where the font has changed, and sends 6 "
      "values for the chip to keep, registers 0x64 and 0x65"))
      << save->toolTip().toStdString();

  bench_.click("Load <- ISP");
  bench_.wire.advance(2000);
  type(321);
  bench_.click_in_column("Factory Reset");
  bench_.wire.advance(2000);
  auto* note = label("unread");
  EXPECT_EQ(note->text(), "older than the chip: <a href=\"load\">read it</a>");
  EXPECT_EQ(red1()->value(), 321) << "nothing is read unasked";
  emit note->linkActivated("load");
  bench_.wire.advance(2000);
  EXPECT_EQ(note->text(), "");
  EXPECT_NE(red1()->value(), 321);

  bench_.open(PageId::registers);
  bench_.click_in_column("Factory Reset");
  bench_.wire.advance(2000);
  auto* of_registers = bench_.widget().findChild<QLabel*>("unread");
  EXPECT_FALSE(of_registers->isHidden());
  EXPECT_EQ(of_registers->text(), note->text());
  emit of_registers->linkActivated("load");
  bench_.wire.advance(2000);
  EXPECT_TRUE(of_registers->isHidden());
}

TEST_F(KnownValues, WhatIsNoEditOfOneValueIsMarkedAndUndoneAsWell) {
  auto* ratio = bench_.control<QSpinBox>("Correction Ratio");
  const int before = ratio->value();
  ratio->setValue(before - 7);
  bench_.wire.advance(2000);
  action("undo")->trigger();
  EXPECT_EQ(ratio->value(), before);
  EXPECT_EQ(action("redo")->text(), "Redo Correction Ratio") << "showing it is no step";

  bench_.open(PageId::dynamic_control);
  bench_.click("Load <- ISP");
  bench_.wire.advance(3000);
  const auto marked = [this](const char* name) {
    const auto* strip = bench_.control<QWidget>(name)->findChild<MarkStrip*>();
    return strip && !strip->isHidden();
  };
  EXPECT_FALSE(marked("MIRROR") || marked("Case of IR-LED") || marked("Video Mode"));
  bench_.click("Case of IR-LED");
  bench_.wire.advance(2000);
  EXPECT_TRUE(marked("Case of IR-LED")) << "the chip reports another one";
  bench_.wire.sender.connected = false;
  bench_.click("MIRROR");
  bench_.wire.advance(2000);
  EXPECT_TRUE(marked("MIRROR") && marked("FLIP")) << "it did not reach the chip";
}

}  // namespace
}  // namespace qv5123
