#include "app/ui/qv5123_view.h"

#include <QtTest>
#include <QtWidgets>

#include "app/ui/message_list.h"
#include "app/ui/port_state.h"
#include "app/ui/status_pane.h"
#include "app/ui/view_bench.h"
#include "console/setting_file.h"
#include "link/ui/link_health_dialog.h"

namespace qv5123 {
namespace {

using test::ViewBench;
using Strings = std::vector<std::string>;

TEST(MainForm, EveryButtonSendsItsFixedCommand) {
  ViewBench bench;
  bench.driver.expect_named_controls();
  auto* manual = bench.frame.findChild<QPushButton*>("manual-send");
  EXPECT_FALSE(manual->isVisible() || manual->isEnabled()) << "there, but out of reach";
  EXPECT_TRUE(bench.driver.find<QAbstractButton>("OSD Up")->autoRepeat());
  EXPECT_EQ(bench.sent_by("OSD Up"), Strings{"@0100*"});
  EXPECT_EQ(bench.sent_by("OSD Down"), Strings{"@0101*"});
  EXPECT_EQ(bench.sent_by("OSD Left"), Strings{"@0102*"});
  EXPECT_EQ(bench.sent_by("OSD Right"), Strings{"@0103*"});
  EXPECT_EQ(bench.sent_by("OSD Set"), Strings{"@0104*"});
  EXPECT_EQ(bench.sent_by("Factory Reset"), Strings{"@9209*@9222*@93cc*"});
  EXPECT_EQ(bench.sent_by("AE Info"), Strings{"@a201*"});
  EXPECT_EQ(bench.sent_by("AWB Info"), Strings{"@a501*"});
  EXPECT_TRUE(bench.user.questions.empty());

  EXPECT_EQ(bench.sent_by("Current ISP Setting copy to Factory"), Strings{}) << "cancelled";
  bench.user.answers = {Answer::yes};
  EXPECT_EQ(bench.sent_by("Current ISP Setting copy to Factory"), Strings{"@bf00*"});
  EXPECT_EQ(bench.user.questions.back().text,
            "would you really want to rewrite factorydata by current userdata?");
  EXPECT_EQ(bench.statuses.back(), "Copy to factory: 1 register sent");
  bench.click("Clear");
  EXPECT_EQ(bench.statuses.back(), "Console emptied: 1 line");
  bench.wire.sender.connected = false;
  bench.sent_by("OSD Up");
  EXPECT_EQ(bench.statuses.back(), "OSD Up: not sent, the port is not open");
}

TEST(MainForm, VersionBoxShowsASlotAndStoresIt) {
  ViewBench bench;
  bench.document.setting_file = bench.folder.path() / "board.dat";
  for (const auto& [entry, digit] : {std::pair{695, 1}, {696, 2}, {697, 0}, {698, 7}, {699, 9}, {700, 9}})
    bench.document.user_data.set_entry(entry, digit);
  bench.pick("Version slot", 1);
  EXPECT_EQ(bench.driver.number("Version number 1"), 12);
  EXPECT_EQ(bench.driver.number("Version number 2"), 7);
  EXPECT_EQ(bench.driver.number("Version number 3"), 99);

  bench.driver.type("Version number 2", 34);
  EXPECT_EQ(bench.sent_by("Store version"), (Strings{"@cc01*@cc02*", "@cc03*@cc04*", "@cc09*@cc09*"}));
  EXPECT_EQ(bench.document.user_data.entry(697), 3);
  EXPECT_EQ(bench.folder.read("board.dat"), setting_text(bench.document.user_data));
  EXPECT_EQ(bench.driver.find<QSpinBox>("Version number 3")->text(), "99");

  bench.document.user_data.set_entry(695, 0);
  bench.document.user_data.set_entry(699, 200);
  const UserDataImage before = bench.document.user_data;
  bench.driver.find<QComboBox>("Version slot")->setCurrentIndex(0);  // as assistive tools do
  bench.driver.find<QComboBox>("Version slot")->setCurrentIndex(1);
  EXPECT_EQ(bench.driver.find<QSpinBox>("Version number 1")->text(), "02");
  EXPECT_EQ(bench.driver.number("Version number 3"), 2009) << "no digits";
  EXPECT_EQ(bench.sent_by("Store version"), (Strings{"@cc00*@cc02*", "@cc03*@cc04*", "@ccc8*@cc09*"}));
  EXPECT_EQ(bench.document.user_data, before);
  bench.driver.find<QSpinBox>("Version number 2")->findChild<QLineEdit*>()->setText("340");
  EXPECT_EQ(bench.sent_by("Store version")[1], "@cc09*@cc09*") << "the nearest, not a third number";
}

TEST(MainForm, OsdPatternIsStoredWrittenAndSentAndShownWithoutSending) {
  ViewBench bench;
  bench.document.setting_file = bench.folder.path() / "board.dat";
  bench.pick("OSD Pattern Choice", 1);
  EXPECT_EQ(bench.document.user_data.entry(634), 1);
  EXPECT_EQ(bench.folder.read("board.dat"), setting_text(bench.document.user_data));
  bench.document.user_data.set_entry(634, 0);
  bench.item(PageId::registers)->trigger();
  bench.wire.advance(100);
  EXPECT_EQ(bench.driver.index("OSD Pattern Choice"), 0);
  EXPECT_EQ(bench.wire.sender.wire(), "@c901*");
}

TEST(MainForm, MenuChoosesOnePageAndGreysItsItem) {
  ViewBench bench;
  QStringList texts;
  for (QAction* action : bench.frame.menuBar()->actions()) texts << action->text();
  EXPECT_EQ(texts.join(' '),
            "&Registers &ISPTune &Gamma &LSC &AWBTune &LinearMatrix &DynamicControl FontEditor &MakeFlash "
            "&Tools &Help");
  const auto greyed = [&] {
    std::string names;
    for (QAction* action : bench.view->pages().actions_in_order())
      if (!action->isEnabled()) names += action->text().toStdString();
    return names;
  };
  const auto shown = [&](PageId id) { return bench.view->pages().page_widget(id)->isVisible(); };
  bench.item(PageId::isp_tune)->trigger();
  bench.item(PageId::font_editor)->trigger();
  EXPECT_EQ(greyed(), "&LSCFontEditor") << "the LSC has no page here";
  EXPECT_TRUE(shown(PageId::font_editor) && !shown(PageId::isp_tune));
  EXPECT_EQ(bench.statuses, (Strings{"ISP tune and debug tool", "", "Edit Font Library"}));
  bench.view->pages().page_widget(PageId::font_editor)->hide();
  EXPECT_EQ(greyed(), "&LSC") << "it closed itself";
  bench.item(PageId::font_editor)->trigger();
  bench.item(PageId::isp_tune)->trigger();
  bench.view->pages().choose(PageId::lsc);
  EXPECT_TRUE(shown(PageId::isp_tune));
  EXPECT_EQ(bench.record,
            (Strings{"isp-tune made", "font-editor made", "font-editor again", "isp-tune again"}));
}

TEST(MainForm, SettingFilesPassThroughThePagesInTheirOrder) {
  ViewBench bench;
  UserDataImage image;
  image.set_entry(634, 1);
  bench.user.paths = {bench.folder.write("board.dat", setting_text(image)), bench.folder / "copy.dat"};
  for (const PageEntry& entry : kPageEntries) bench.view->pages().choose(entry.id);
  bench.record.clear();
  bench.click("Load File...");
  EXPECT_EQ(bench.driver.index("OSD Pattern Choice"), 1);
  bench.click("Save File...");
  EXPECT_EQ(bench.record, (Strings{"gamma reloaded", "awb-tune reloaded", "dynamic-control reloaded",
                                   "linear-matrix reloaded", "gamma saved", "awb-tune saved",
                                   "dynamic-control saved", "linear-matrix saved"}));
  EXPECT_EQ(bench.folder.read("copy.dat"), setting_text(image));
}

TEST(MainForm, OffersTheSettingFilesUsedLast) {
  ViewBench bench;
  auto* recent = bench.driver.find<QToolButton>("Recent setting files");
  EXPECT_FALSE(recent->isEnabled());
  UserDataImage image;
  image.set_entry(689, 4);
  bench.user.paths = {bench.folder.write("a&b.dat", setting_text(image)), bench.folder.path() / "c.dat"};
  bench.click("Load File...");
  bench.document.user_data.set_entry(689, 7);
  bench.click("Save File...");
  const auto item = [&](int at) { return recent->menu()->actions().at(at); };
  EXPECT_EQ(item(0)->text(), "&1 c.dat");
  EXPECT_EQ(item(1)->text(), "&2 a&&b.dat");
  item(1)->trigger();
  QCoreApplication::processEvents();
  EXPECT_EQ(bench.driver.number("Version number 1"), 40);
  EXPECT_EQ(item(0)->text(), "&1 a&&b.dat");
}

TEST(MainForm, ClosingAsksAndObeysAndAsksAgainWhileAPageIsBusy) {
  ViewBench bench;
  int ends = 0;
  QObject::connect(bench.view, &CQV5123View::closing_confirmed, [&] { ++ends; });
  bench.user.answers = {Answer::no, Answer::cancel, Answer::no};
  bench.frame.close();
  EXPECT_EQ(ends, 1);
  bench.view->set_busy(true);
  bench.frame.close();
  EXPECT_EQ(ends, 1) << "the user stays";
}

TEST(MainForm, ClosingEndsADownloadAsTheChipCanTake) {
  ViewBench bench;
  int ends = 0;
  QObject::connect(bench.view, &CQV5123View::closing_confirmed, [&] { ++ends; });
  bench.user.paths = {bench.folder.write("font.bin", std::string(1024, 'f'))};
  bench.click("FONT");
  bench.click("FW");
  bench.wire.advance(50 + 50 + 50);
  bench.user.answers = {Answer::yes, Answer::no};
  bench.frame.close();
  EXPECT_EQ(ends, 0);
  bench.wire.advance(1000);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(bench.wire.sender.writes.size(), 7u)
      << "the announced four blocks, and no letter of the next one";
  EXPECT_EQ(bench.wire.sender.writes.back(), std::string(1, static_cast<char>(~4)));
}

TEST(MainForm, AFailureStaysInThePaneUntilTheListOfMessagesIsOpened) {
  ViewBench bench;
  const auto pane = [&] { return bench.frame.findChild<StatusPane*>(); };
  const auto shown = [&](const char* label) { return pane()->findChild<QLabel*>(label)->text(); };
  bench.view->pages().choose(PageId::gamma);
  bench.view->pages().choose(PageId::awb_tune);
  bench.hosts["gamma"]->show_failure("Nothing more reached the chip");
  bench.view->say(StatusRank::failure, kAboutPort, "ttyUSB0 is gone.");
  bench.view->say(StatusRank::outcome, kAboutPort, "ttyUSB0 is back.");
  bench.hosts["awb-tune"]->show_status("AWB Load Ok...");
  EXPECT_EQ(shown("failure"), "Nothing more reached the chip") << "it is the hidden page's";
  EXPECT_EQ(shown("latest"), "AWB Load Ok...");
  EXPECT_TRUE(pane()->accessibleName().startsWith("Nothing more reached the chip\n"));
  QStatusTipEvent hover("Make EEPROM flash binary");
  QApplication::sendEvent(&bench.frame, &hover);
  EXPECT_TRUE(pane()->isVisible());
  EXPECT_EQ(bench.frame.findChild<QAbstractButton*>("port-state")->accessibleName(), "Port closed");

  QTest::keyClick(pane(), Qt::Key_Space);
  auto* list = bench.frame.findChild<MessageList*>()->findChild<QListWidget*>();
  EXPECT_EQ(list->count(), 6);
  EXPECT_TRUE(list->item(2)->text().endsWith("  Failed: Nothing more reached the chip"));
  EXPECT_EQ(shown("failure"), "") << "it was read";
  bench.view->say(StatusRank::outcome, kAboutForm, "AE Info: 1 register sent");
  EXPECT_EQ(list->count(), 7) << "while it is open";
}

TEST(MainForm, TheListOfMessagesHasAllOfAClockTickAndKeepsWhatIsChosen) {
  StatusBoard board([] { return std::chrono::system_clock::time_point(); });
  const auto say = [&board](const std::string& text) { board.show(StatusRank::outcome, "lsc", text); };
  MessageList window;
  auto* list = window.findChild<QListWidget*>();
  say("one");
  say("two");
  window.show_messages(board);
  window.show();
  say("three");
  window.show_messages(board);
  EXPECT_EQ(list->count(), 3);
  list->setCurrentRow(1);
  say("three");
  for (std::size_t i = 2; i < StatusBoard::kHistory; ++i) say("more " + std::to_string(i));
  window.show_messages(board);
  EXPECT_EQ(list->count(), StatusBoard::kHistory);
  ASSERT_EQ(list->selectedItems().size(), 1);
  EXPECT_TRUE(list->selectedItems()[0]->text().endsWith("  two"));
  EXPECT_EQ(list->row(list->selectedItems()[0]), 0) << "the first is forgotten";
  EXPECT_TRUE(list->item(1)->text().endsWith("  three (2 times)"));
}

TEST(MainForm, ThePortStateTellsHowTheLineDoes) {
  ViewBench bench;
  auto* state = bench.frame.findChild<QAbstractButton*>("port-state");
  QTest::mouseClick(state, Qt::LeftButton);
  EXPECT_EQ(bench.frame.findChild<LinkHealthDialog*>(), nullptr) << "there is no port yet";
  bench.frame.port_state().use_report([&] {
    return LinkReport{"ttyUSB0", true, bench.wire.link.health(), {}};
  });
  bench.wire.link.send({{0x20, 1}});
  bench.wire.advance(50);

  QHelpEvent hover(QEvent::ToolTip, QPoint(1, 1), state->mapToGlobal(QPoint(1, 1)));
  QApplication::sendEvent(state, &hover);
  EXPECT_TRUE(QToolTip::text().contains("Sent: 6 bytes, 1 register write\n"))
      << QToolTip::text().toStdString();
  bench.frame.findChild<QAction*>("link-health")->trigger();
  auto* dialog = bench.frame.findChild<LinkHealthDialog*>();
  ASSERT_NE(dialog, nullptr);
  EXPECT_TRUE(dialog->findChild<QLabel*>("latency-hint")->isHidden());
  test::PageDriver(*dialog).expect_labels_read_out();
  for (auto* button : dialog->findChildren<QPushButton*>())
    if (button->text() == "Copy") button->click();
  EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Port: ttyUSB0, open\nSent: 6 bytes"));
}

TEST(MainForm, ACommandForAChipThatWaitsForAnImageIsAskedAbout) {
  ViewBench bench;
  bench.click("FW");  // and no file is chosen
  bench.wire.advance(100);
  EXPECT_TRUE(bench.driver.find<QPushButton>("Cancel download")->isEnabled());
  bench.click("OSD Up");
  bench.wire.advance(1000);
  EXPECT_EQ(bench.wire.sender.writes, Strings{"A"});
  EXPECT_EQ(bench.view->board().failures().back().text,
            "FIRMWARE: the chip still expects an image. Commands wait.");
  bench.user.answers = {Answer::yes};
  bench.click("OSD Up");
  bench.wire.advance(1000);
  EXPECT_EQ(bench.wire.sender.writes, (Strings{"A", std::string(2, '\0'), "\xFF", "@0100*", "@0100*"}));
  EXPECT_FALSE(bench.driver.find<QPushButton>("Cancel download")->isEnabled());
  bench.click("FONT");
  bench.wire.advance(100);
  bench.click("Cancel download");
  EXPECT_EQ(bench.sent_by("OSD Set"), (Strings{std::string(2, '\0'), "\xFF", "@0104*"}));
}

}  // namespace
}  // namespace qv5123
