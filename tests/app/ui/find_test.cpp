#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtWidgets>

#include "app/ui/column_drawer.h"
#include "app/ui/find_dialog.h"
#include "app/ui/window_bench.h"
#include "registers/register_sheet.h"

namespace qv5123 {
namespace {

TEST(Find, RanksNamesThatBeginWithTheTextBeforeOthers) {
  const FindItem item{"Parameter-1 RED", "LSC, lsc.parameter1.r, register 0x64", {}};
  EXPECT_EQ(find_rank(item, "parameter-1 red"), 0);
  EXPECT_EQ(find_rank(item, "Para"), 1);
  EXPECT_EQ(find_rank(item, "red"), 2);
  EXPECT_EQ(find_rank(item, "meter"), 3);
  EXPECT_EQ(find_rank(item, "lsc red"), 4);
  EXPECT_EQ(find_rank(item, "0x64"), 4);
  EXPECT_EQ(find_rank(item, "red gamma"), -1);
}

struct Finder : test::WindowBench {
  void press(QWidget* at, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(at, key, modifiers);
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    wire.advance(2000);
  }
  FindDialog* dialog() { return frame->findChild<FindDialog*>(); }
  /// What comes first, as "name | where".
  std::string first(const char* text, Qt::Key key = Qt::Key_K) {
    press(QApplication::focusWidget(), key, Qt::ControlModifier);
    if (!dialog()) return "no dialog";
    dialog()->findChild<QLineEdit*>()->setText(text);
    const QTreeWidgetItem* item = dialog()->findChild<QTreeWidget*>()->currentItem();
    return item ? (item->text(0) + " | " + item->text(1)).toStdString() : "";
  }
  void go() {
    press(dialog()->findChild<QLineEdit*>(), Qt::Key_Return);
    // As a window system does it.
    QApplication::setActiveWindow(frame.get());
    QCoreApplication::processEvents();
  }
  std::string focus() {
    const QWidget* at = QApplication::focusWidget();
    return at ? at->accessibleName().toStdString() : "";
  }
};

TEST(Find, GoesToValuesOfPagesThatNobodyOpened) {
  Finder finder;
  finder.choose(PageId::registers);
  EXPECT_EQ(finder.first("lsc parameter-2 gr"), "Parameter-2 GREEN | LSC, lsc.parameter2.g, register 0x65");
  finder.wire.sender.writes.clear();
  finder.go();
  EXPECT_FALSE(finder.dialog()->isVisible());
  EXPECT_EQ(finder.view->pages().current(), PageId::lsc);
  EXPECT_EQ(finder.focus(), "Parameter-2 GREEN");
  // With the keyboard in an edit, which has keys of its own.
  EXPECT_EQ(finder.first("ae 0x3c").substr(0, 7), "AE 0x3C");
  finder.go();
  EXPECT_EQ(finder.view->pages().current(), PageId::dynamic_control);
  EXPECT_EQ(finder.focus(), "AE 0x3C") << "behind \"More\"";
  EXPECT_EQ(finder.first("no such thing"), "");
}

TEST(Find, AValueOfAnotherModeIsShownByThePagesOwnControls) {
  Finder finder;
  finder.choose(PageId::registers);
  const auto at = [&finder](PageId id) -> QWidget& { return *finder.view->pages().page_widget(id); };
  const auto checked = [](QWidget& page, const char* name) {
    return test::find<QAbstractButton>(page, name)->isChecked();
  };
  finder.first("dynamic.light1.saturation");
  finder.wire.sender.writes.clear();
  finder.go();
  QWidget& dynamic = at(PageId::dynamic_control);
  EXPECT_TRUE(checked(dynamic, "Light-1"));
  EXPECT_EQ(finder.focus(), "Saturation");
  finder.first("dynamic.ir_led.nr.step1");
  finder.go();
  EXPECT_TRUE(checked(dynamic, "Case of IR-LED"));
  finder.first("dynamic.cvi.nr.step1");
  finder.go();
  EXPECT_FALSE(checked(dynamic, "Case of IR-LED"));
  EXPECT_EQ(test::find<QComboBox>(dynamic, "Video Mode")->currentText(), "CVI");
  EXPECT_EQ(finder.focus(), "NR Step 1");
  finder.first("matrix.ahd.light2.g[1]");
  finder.go();
  EXPECT_TRUE(checked(at(PageId::linear_matrix), "Light-2"));
  EXPECT_EQ(test::find<QComboBox>(at(PageId::linear_matrix), "Video Mode")->currentText(), "AHD");
  EXPECT_EQ(finder.wire.sender.wire(), "") << "nothing is sent unasked";
}

TEST(Find, GoesToRegistersBitFieldsControlsAndCommands) {
  Finder finder;
  finder.choose(PageId::registers);
  finder.wire.advance(500);
  const auto& model = *test::find<QTableView>(*finder.frame, "Registers")->model();
  EXPECT_EQ(model.index(0, 1).data().toString(), "0xF800");
  EXPECT_EQ(finder.first("0xfa20", Qt::Key_F).substr(0, 24), "PIPE_CONTROL | Registers");
  finder.go();
  EXPECT_EQ(finder.focus(), "Value");
  EXPECT_EQ(test::find<QLineEdit>(*finder.frame, "Address")->text(), "0xFA20");

  finder.first("fold the column");
  const int shape = finder.view->column().chosen();
  finder.go();
  EXPECT_NE(finder.view->column().chosen(), shape) << "done";
  EXPECT_EQ(finder.first("Factory Reset").substr(0, 22), "Factory Reset | Column");
  finder.wire.sender.writes.clear();
  finder.go();
  EXPECT_EQ(finder.focus(), "Factory Reset");
  EXPECT_EQ(finder.wire.sender.wire(), "") << "gone to, not pressed";
  EXPECT_EQ(finder.first("measure 18"), "Measure 18 | AWBTune") << "nobody has opened it";
  finder.go();
  EXPECT_EQ(finder.focus(), "Measure 18");
}

}  // namespace
}  // namespace qv5123
