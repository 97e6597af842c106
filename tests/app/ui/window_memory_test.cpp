#include "app/ui/window_memory.h"

#include <gtest/gtest.h>

#include <QtWidgets>

#include "app/ui/camera_place.h"
#include "app/ui/column_drawer.h"
#include "app/ui/window_bench.h"
#include "registers/ui/multiline_list.h"
#include "state/ui/compare_model.h"

namespace qv5123 {
namespace {

TEST(MainFrame, HasItsPlaceWithinTheScreenFrameIncluded) {
  const QMargins frame(4, 30, 4, 4);
  EXPECT_EQ(place_on_screen({1280, 800}, {0, 0, 1280, 800}, frame), QRect(4, 30, 1272, 766));
  EXPECT_EQ(place_on_screen({1280, 800}, {100, 0, 1920, 1080}, frame), QRect(420, 153, 1280, 800));
}

TEST(WindowMemory, BringsBackPlaceColumnPageAndThePagesOwnChoices) {
  const test::TemporaryFolder folder;
  QSettings store(QString::fromStdString((folder.path() / "settings.ini").string()), QSettings::IniFormat);
  AppSettings settings(store);
  {
    test::WindowBench bench;
    WindowMemory memory(*bench.frame, *bench.view, settings.window_look());
    memory.restore();
    EXPECT_EQ(memory.last_page(), std::nullopt);
    bench.frame->resize(700, 500);
    test::find<QAbstractButton>(bench.choose(PageId::gamma), "More")->click();
    test::find<QAbstractButton>(bench.choose(PageId::registers), "Favourite")->click();
    test::find<QLineEdit>(bench.choose(PageId::make_flash), "fw file")->setText("/a/fw.bin");
    test::find<QComboBox>(bench.choose(PageId::linear_matrix), "Move Step")->setCurrentIndex(2);
    test::find<QComboBox>(bench.choose(PageId::lsc), "Screen Size")->setCurrentIndex(1);
    test::find<QSpinBox>(bench.choose(PageId::linear_matrix), "Noise limit")->setValue(250);
    test::find<QCheckBox>(bench.choose(PageId::linear_matrix), "Input Manually")->setChecked(true);
    test::find<CMultilineList>(bench.choose(PageId::registers), "Bit fields")->set_column_width(1, 222);
    bench.choose(PageId::make_flash);
    bench.view->column().choose_next();
    settings.store_window_look(memory.look());
  }
  test::WindowBench bench;
  WindowMemory memory(*bench.frame, *bench.view, settings.window_look());
  memory.restore();
  EXPECT_EQ(bench.frame->size(), QSize(700, 500));
  EXPECT_EQ(memory.last_page(), PageId::make_flash);
  EXPECT_EQ(bench.view->column().shape(), ColumnShape::console);
  EXPECT_TRUE(test::find<QAbstractButton>(bench.choose(PageId::gamma), "More")->isChecked());
  EXPECT_TRUE(test::find<QAbstractButton>(bench.choose(PageId::registers), "Favourite")->isChecked());
  EXPECT_EQ(test::find<CMultilineList>(bench.choose(PageId::registers), "Bit fields")->column_width(1), 222);
  EXPECT_EQ(test::find<QComboBox>(bench.choose(PageId::linear_matrix), "Move Step")->currentIndex(), 2);
  EXPECT_EQ(test::find<QComboBox>(bench.choose(PageId::lsc), "Screen Size")->currentIndex(), 1);
  EXPECT_EQ(test::find<QSpinBox>(bench.choose(PageId::linear_matrix), "Noise limit")->value(), 250);
  EXPECT_TRUE(test::find<QCheckBox>(bench.choose(PageId::linear_matrix), "Input Manually")->isChecked());
  EXPECT_EQ(memory.look().choices.value("make-flash/fw file"), "/a/fw.bin") << "a page not opened this time";
  EXPECT_EQ(test::find<QLineEdit>(bench.choose(PageId::make_flash), "fw file")->text(), "/a/fw.bin");
}

TEST(WindowMemory, KeepsTheWidthsOfATableThatHadAFurtherColumn) {
  QTableView wider;
  QStandardItemModel columns(1, CompareModel::kColumns);
  wider.setModel(&columns);
  wider.setColumnWidth(0, 222);
  WindowLook look;
  look.choices["compare/Columns of the values"] = wider.horizontalHeader()->saveState();
  test::WindowBench bench;
  const WindowMemory memory(*bench.frame, *bench.view, look);
  const auto* header = test::find<QTableView>(bench.choose(PageId::compare), "Values")->horizontalHeader();
  EXPECT_EQ(header->sectionSize(0), 222);
  EXPECT_EQ(header->count(), CompareModel::kColumns - 1);
}

TEST(WindowMemory, FallsBackToWhatTheScreenHolds) {
  WindowLook look;
  {
    test::WindowBench bench({3000, 2000});
    look = WindowMemory(*bench.frame, *bench.view, {}).look();
  }
  look.docks = "garbage";
  look.column = 77;
  test::WindowBench bench({400, 300});
  WindowMemory memory(*bench.frame, *bench.view, look);
  memory.restore();
  EXPECT_TRUE(bench.frame->screen()->availableGeometry().contains(bench.frame->frameGeometry()));
  EXPECT_EQ(bench.view->column().shape(), ColumnShape::whole);
}

TEST(WindowMemory, TheCameraComesBackAsItWasHoweverLateButFloatsNoMore) {
  const auto add_camera = [](const test::WindowBench& bench) {
    auto* dock = new QDockWidget("Camera", bench.frame.get());
    dock->setObjectName("camera");
    place_camera(*bench.frame, *dock, true);
    return dock;
  };
  WindowLook look;
  {
    test::WindowBench bench;
    QDockWidget* dock = add_camera(bench);
    dock->setFloating(true);
    dock->show();
    look = WindowMemory(*bench.frame, *bench.view, {}).look();
  }
  for (const bool late : {false, true}) {
    test::WindowBench bench;
    WindowMemory memory(*bench.frame, *bench.view, look);
    if (late) memory.restore();
    QDockWidget* dock = add_camera(bench);
    dock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
    if (!late) memory.restore();
    EXPECT_FALSE(dock->isFloating()) << late;
    EXPECT_FALSE(dock->isHidden()) << "by itself it would not open beside so large a window: " << late;
  }
}

TEST(ColumnDrawer, FoldsByItselfUntilTheUserChooses) {
  test::WindowBench bench({853, 500});
  bench.choose(PageId::linear_matrix);
  ColumnDrawer& column = bench.view->column();
  EXPECT_EQ(column.shape(), ColumnShape::folded);
  bench.frame->resize(1280, 770);
  QCoreApplication::processEvents();
  EXPECT_EQ(column.shape(), ColumnShape::whole);
  QApplication::setActiveWindow(bench.frame.get());
  QTest::keyClick(bench.frame.get(), Qt::Key_F9);
  EXPECT_EQ(column.shape(), ColumnShape::console);
  EXPECT_TRUE(test::find<QWidget>(*bench.frame, "Console")->isVisible());
  EXPECT_FALSE(test::find<QWidget>(*bench.frame, "Factory Reset")->isVisible());
  bench.frame->resize(853, 500);
  QCoreApplication::processEvents();
  EXPECT_EQ(column.shape(), ColumnShape::console) << "chosen";
}

}  // namespace
}  // namespace qv5123
