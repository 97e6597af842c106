#include "registers/ui/register_page_bench.h"

namespace qv5123 {
namespace {

using test::RegisterPageTest;

TEST_F(RegisterPageTest, ShowsAndReadsTheFirstRegister) {
  open();
  EXPECT_TRUE(page_->loading());
  wire_.advance(200);
  EXPECT_FALSE(page_->loading());
  EXPECT_EQ(text("Address"), "0xF800");
  EXPECT_EQ(text("Value"), "0xA5");
  EXPECT_EQ(text("Name"), "MODE");
  EXPECT_EQ(cell(1, 1), "0xf801");
  EXPECT_EQ(cell(0, 3), "0xA5");
  EXPECT_EQ(cell(1, 3), "");
  EXPECT_EQ(fields(0), (std::vector<std::string>{"[7:4]", "HIGH", "upper\r\nhalf", "0..15", " 10"}));
  EXPECT_EQ(fields(1).back(), " 1");
  EXPECT_EQ(fields(2), (std::vector<std::string>{" ", " ", " ", " ", ""}));
  EXPECT_TRUE(find<QCheckBox>("Bit 7")->isChecked());
  EXPECT_FALSE(find<QCheckBox>("Bit 6")->isChecked());
  EXPECT_FALSE(find("Write REG to Flash")->isEnabled());
  test::PageDriver(*page_).expect_named_controls();
}

TEST_F(RegisterPageTest, RowsAreReadWhenSelectedAndWhenDoubleClicked) {
  open_and_read();
  click_row(1);
  wire_.advance(300);
  EXPECT_EQ(text("Address"), "0xf801");
  QTest::keyClick(list(), Qt::Key_Down);
  wire_.advance(300);
  EXPECT_EQ(text("Name"), "ID");
  chip_.requests.clear();
  const QRect place = list()->visualRect(list()->model()->index(2, 1));
  click_row(2);
  QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, place.center());
  wire_.advance(300);
  EXPECT_EQ(chip_.requests, std::vector<int>{0x0A5});
  QTest::keyClick(list(), Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(text("Address"), "0xf801");
  click_row(2);
  EXPECT_EQ(text("Name"), "ID") << "one of several that were selected already";
  QAccessible::queryAccessibleInterface(list())->tableInterface()->selectRow(0);
  EXPECT_EQ(text("Name"), "MODE") << "as an assistive tool selects it";
  EXPECT_EQ(list()->selectionModel()->selectedRows().size(), 1);
}

TEST_F(RegisterPageTest, TypedAddressesAndValuesAreSent) {
  open_and_read();
  auto* address = find<QLineEdit>("Address");
  address->setFocus(Qt::TabFocusReason);
  QTest::keyClicks(address, "fa20!");
  EXPECT_EQ(text("Address"), "0xFA20");
  EXPECT_EQ(text("Name"), "K1");
  EXPECT_TRUE(list()->selectionModel()->selectedRows().empty());
  QTest::keyClick(address, Qt::Key_Return);
  wire_.advance(300);
  EXPECT_EQ(text("Value"), "0x07");

  auto* value = find<QLineEdit>("Value");
  value->setFocus(Qt::TabFocusReason);
  QTest::keyClicks(value, "4&");
  EXPECT_TRUE(find<QCheckBox>("Bit 6")->isChecked());
  find<QCheckBox>("Bit 0")->click();
  click("Value up");
  click("Write");
  wire_.advance(50);
  EXPECT_EQ(wire_.sender.writes.back(), "@920a*@9220*@934a*");
  EXPECT_EQ(fields(0).back(), " 74");
  click("Address down");
  EXPECT_EQ(text("Address"), "0xFA1F");
}

TEST_F(RegisterPageTest, TextThatComesAsAWholeIsTakenOrRefusedAsAWhole) {
  open();
  auto* address = find<QLineEdit>("Address");
  QApplication::clipboard()->setText("1");
  address->paste();
  address->insert("9");
  address->selectAll();
  address->cut();
  EXPECT_EQ(address->text(), "0xF800");
  const auto paste = [address](const char* text) {
    QApplication::clipboard()->setText(text);
    QTest::keyClick(address, Qt::Key_V, Qt::ControlModifier);
    return address->text().toStdString();
  };
  EXPECT_EQ(paste(" 0xfa20\n"), "0xFA20");
  EXPECT_EQ(text("Name"), "K1");
  EXPECT_EQ(paste("12"), "0x0012");
  for (const char* refused : {"F8011", "-1", "0x", "1 2", ""}) EXPECT_EQ(paste(refused), "0x0012");
}

TEST_F(RegisterPageTest, ASortedListReadsAndShowsWhatIsChosenInIt) {
  open_and_read();
  list()->sortByColumn(2, Qt::DescendingOrder);
  EXPECT_EQ(cell(0, 2), "MODE");
  EXPECT_EQ(cell(2, 2), "GAIN");
  click_row(2);
  wire_.advance(300);
  EXPECT_EQ(text("Address"), "0xf801");
  EXPECT_EQ(cell(2, 3), "0x3C") << "its own row";
  page_->go_to(0);
  wire_.advance(300);
  EXPECT_EQ(text("Name"), "MODE");
  EXPECT_EQ(list()->selectionModel()->selectedRows().at(0).row(), 0);
  list()->sortByColumn(3, Qt::AscendingOrder);
  EXPECT_EQ(cell(0, 3), "") << "not read yet";
  EXPECT_EQ(cell(2, 3), "0xA5");
}

TEST_F(RegisterPageTest, ABitFieldIsChangedInItsRow) {
  open_and_read();
  auto* table = find<CMultilineList>("Bit fields");
  const auto edit = [this, table](int row) {
    table->setFocus();
    table->setCurrentIndex(table->model()->index(row, 1));
    QTest::keyClick(table, Qt::Key_Return);
    return QApplication::focusWidget();
  };
  QWidget* editor = edit(0);
  ASSERT_TRUE(qobject_cast<QLineEdit*>(editor));
  EXPECT_EQ(editor->accessibleName(), "Data of row 1");
  const std::size_t sent = wire_.sender.writes.size();
  QTest::keyClicks(editor, "3");
  QTest::keyClick(editor, Qt::Key_Return);
  QCoreApplication::processEvents();
  EXPECT_EQ(text("Value"), "0x35");
  EXPECT_EQ(fields(0).back(), " 3");
  EXPECT_FALSE(find<QCheckBox>("Bit 7")->isChecked());
  EXPECT_EQ(wire_.sender.writes.size(), sent) << "\"Write\" sends it";
  EXPECT_EQ(edit(4), table) << "no field there";
  const auto* interface = QAccessible::queryAccessibleInterface(table)->tableInterface();
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(interface->cellAt(0, 1)->text(QAccessible::Name), "HIGH");
  EXPECT_EQ(interface->columnDescription(2), "Description");
}

TEST_F(RegisterPageTest, ChangesOfTheValueAreTakenBackUntilItIsRead) {
  open_and_read();
  const std::size_t sent = wire_.sender.writes.size();
  find<QCheckBox>("Bit 0")->click();
  auto* table = find<CMultilineList>("Bit fields");
  emit table->cell_edited(4, 0, 3);
  EXPECT_EQ(text("Value"), "0x34");
  EXPECT_EQ(page_->next_undo(), "0xF800's value");
  page_->undo_step();
  EXPECT_EQ(text("Value"), "0xA4");
  EXPECT_EQ(fields(0).back(), " 10");
  page_->undo_step();
  EXPECT_EQ(text("Value"), "0xA5");
  page_->redo_step();
  EXPECT_EQ(text("Value"), "0xA4");
  EXPECT_FALSE(find<QCheckBox>("Bit 0")->isChecked());
  EXPECT_EQ(wire_.sender.writes.size(), sent);
  click("Read");
  wire_.advance(300);
  EXPECT_EQ(page_->next_undo() + page_->next_redo(), "") << "nothing to take back any more";
}

TEST_F(RegisterPageTest, AScreenReaderSetsTextsAndTogglesBoxes) {
  open_and_read();
  const auto interface = [this](const char* name) {
    return QAccessible::queryAccessibleInterface(find(name));
  };
  interface("Address")->setText(QAccessible::Value, "0xFA20");
  EXPECT_EQ(text("Name"), "K1");
  interface("Value")->editableTextInterface()->replaceText(0, 4, "5a");
  EXPECT_EQ(text("Value"), "0x5A");
  EXPECT_TRUE(find<QCheckBox>("Bit 6")->isChecked());
  interface("Bit 0")->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_EQ(text("Value"), "0x5B");
  interface("Address")->setText(QAccessible::Value, "gain");
  interface("Address")->editableTextInterface()->insertText(6, "7");
  EXPECT_EQ(text("Address"), "0xFA20");
}

TEST_F(RegisterPageTest, AFileThatCannotBeUsedIsNamedAndStopEndsASequence) {
  open_and_read();
  host_.user.paths = {folder_ / "none" / "r.txt", folder_ / "gone.txt"};
  click("Save REG to File...");
  EXPECT_NE(host_.user.messages.at(0).text.find("r.txt"), std::string::npos);
  EXPECT_EQ(host_.user.saves.back().filter, "REG Files (*.txt)|*.txt|All Files (*.*)|*.*||");
  EXPECT_EQ(host_.user.saves.back().initial_name, "*.txt");
  click("Load REG from File to ISP...");
  EXPECT_NE(host_.user.messages.at(1).text.find("gone.txt"), std::string::npos);
  chip_.silent = true;
  click("Load From ISP");
  wire_.advance(5000);
  click("Stop reading registers");
  EXPECT_TRUE(find("Load From ISP")->isEnabled());
}

TEST_F(RegisterPageTest, WithoutADescriptionThePageSaysSo) {
  page_ = std::make_unique<CDlgIspRegister>(host_);
  EXPECT_EQ(host_.user.messages.at(0).text, "Can't find regu.xml!");
  EXPECT_EQ(list()->model()->rowCount(), 0);
  click("Read");
  wire_.advance(300);
  EXPECT_EQ(text("Value"), "0xA5");
}

TEST_F(RegisterPageTest, OpensAtOnceAndFillsWhenTheDescriptionIsRead) {
  host_.work.busy = true;
  open();
  EXPECT_EQ(page_->focusWidget(), list());
  for (const char* early : {"Load From ISP", "Load All From ISP", "Write"}) click(early);
  wire_.advance(300);
  std::filesystem::current_path(folder_ / "..");
  host_.work.catch_up();
  EXPECT_TRUE(page_->loading());
  wire_.advance(300);
  EXPECT_FALSE(page_->loading());
  EXPECT_EQ(chip_.requests, std::vector<int>{0x800});
  EXPECT_EQ(cell(0, 3), "0xA5");
}

}  // namespace
}  // namespace qv5123
