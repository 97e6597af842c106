#include "base/ui/kept_text.h"
#include "registers/ui/register_page_bench.h"

namespace qv5123 {
namespace {

class RegisterFilterTest : public test::RegisterPageTest {
 protected:
  /// The names in the list, in its order.
  std::string names() {
    std::string all;
    for (int row = 0; row < list()->model()->rowCount(); ++row) all += (row > 0 ? " " : "") + cell(row, 2);
    return all;
  }
  std::string filtered(const char* words) {
    find<QLineEdit>("Filter")->setText(words);
    return names();
  }
  void only(int index) { find<QComboBox>("Show only")->setCurrentIndex(index); }
  void write(const char* address, const char* value) {
    find("Address")->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(find("Address"), address);
    find("Value")->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(find("Value"), value);
    click("Write");
    wire_.advance(100);
  }
  static constexpr int kChanged = 1, kFavourites = 2;
};

TEST_F(RegisterFilterTest, ListsWhatHasTheWordsInAllCategoriesAndReadsWhatIsChosen) {
  open_and_read();
  EXPECT_EQ(names(), "MODE GAIN ID");
  EXPECT_EQ(filtered("0xf801 lens"), "GAIN2") << "address and category";
  EXPECT_EQ(filtered("bit0"), "MODE") << "a bit field";
  EXPECT_EQ(text("Address"), "0xF800");
  EXPECT_EQ(filtered("nothing"), "");
  EXPECT_EQ(filtered("gain"), "GAIN GAIN2");
  chip_.requests.clear();
  wire_.advance(500);
  EXPECT_TRUE(chip_.requests.empty()) << "nothing is read by typing";

  click_row(1);
  wire_.advance(300);
  EXPECT_EQ(chip_.requests, std::vector<int>{0x801});
  EXPECT_EQ(text("Name"), "GAIN2");
  EXPECT_EQ(find<QComboBox>("Category")->currentText(), "Lens");
  EXPECT_EQ(names(), "GAIN GAIN2") << "the list stays";
  EXPECT_EQ(cell(1, 3), "0x3C");
  EXPECT_EQ(cell(1, 0), "1") << "in its category";
  page_->go_to(0);
  EXPECT_EQ(names(), "MODE GAIN ID") << "what the filter leaves out is looked at in its category";
  filtered("gain");
  find<QComboBox>("Category")->setCurrentIndex(1);
  EXPECT_EQ(names(), "K1 GAIN2") << "choosing a category ends the filter";
  EXPECT_EQ(find<QLineEdit>("Filter")->text(), "");
  filtered("gain");
  emit find<QComboBox>("Category")->activated(1);
  EXPECT_EQ(names(), "K1 GAIN2") << "also the one that is shown";
}

TEST_F(RegisterFilterTest, TheKeyboardGoesFromTheFilterToTheList) {
  open_and_read();
  find("Filter")->setFocus();
  QTest::keyClicks(find("Filter"), "k1");
  QTest::keyClick(find("Filter"), Qt::Key_Return);
  wire_.advance(300);
  EXPECT_EQ(QApplication::focusWidget(), list());
  EXPECT_EQ(text("Name"), "K1");
  EXPECT_EQ(text("Value"), "0x07");
}

TEST_F(RegisterFilterTest, ChangedSinceListsWhatIsWrittenMeanwhileAndKeepsItsRows) {
  open_and_read();
  only(kChanged);
  EXPECT_EQ(names(), "");
  write("fa20", "12");
  EXPECT_EQ(names(), "K1");
  EXPECT_TRUE(list()->selectionModel()->isRowSelected(0));
  write("f800", "77");
  EXPECT_EQ(names(), "MODE K1");
  EXPECT_EQ(cell(0, 3) + cell(1, 3), "0x770x12") << "of whatever category";
  click_row(1);
  EXPECT_EQ(cell(0, 3), "0x77");
  wire_.advance(300);
  EXPECT_EQ(cell(1, 3), "0x07");
  click_row(0);
  EXPECT_EQ(list()->model()->index(0, 3).data(Qt::ToolTipRole).toString(), "At first 0xA5");
  EXPECT_TRUE(list()->model()->index(0, 3).data(Qt::FontRole).value<QFont>().bold());
  click("Read");
  wire_.advance(300);
  EXPECT_EQ(cell(0, 3), "0xA5") << "the chip has not taken it";
  EXPECT_EQ(names(), "MODE K1") << "no row goes away under the hand";
  only(0);
  only(kChanged);
  EXPECT_EQ(names(), "K1");
}

TEST_F(RegisterFilterTest, FavouritesAreListedAndKept) {
  open_and_read();
  click("Favourite");
  page_->go_to(3);
  EXPECT_FALSE(find<QPushButton>("Favourite")->isChecked()) << "it is of the current register";
  click("Favourite");
  page_->go_to(1);
  only(kFavourites);
  EXPECT_EQ(names(), "MODE K1");
  auto* keeper = dynamic_cast<KeptText*>(find("Favourite"));
  EXPECT_EQ(keeper->kept_text(), "0xF800 MODE\n0xFA20 K1");
  keeper->take_kept("0xF801 GAIN\n0xFA20 of another description");
  EXPECT_EQ(names(), "GAIN");
  EXPECT_TRUE(find<QPushButton>("Favourite")->isChecked());
  EXPECT_EQ(
      QAccessible::queryAccessibleInterface(list())->tableInterface()->cellAt(0, 2)->text(QAccessible::Name),
      "GAIN, favourite");
}

}  // namespace
}  // namespace qv5123
