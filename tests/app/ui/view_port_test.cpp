// The main form's port, from the start to the last words to the chip.
#include <gtest/gtest.h>

#include <QLineEdit>

#include "app/ui/view_bench.h"
#include "base/delay.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

using test::ViewBench;
using Strings = std::vector<std::string>;

TEST(MainForm, ThePortIsLeftWithTheLastWordsAlsoWhileTheChipStores) {
  ViewBench bench;
  bench.view->pages().choose(PageId::gamma);
  bench.last_words = {{{0x43, 0}}};
  const auto leave = [&]() -> Task<> {
    co_await bench.view->leave_chip(std::chrono::seconds(1), CQV5123View::Leave::for_now);
  };
  {
    const auto stores = [&]() -> Task<> {
      const CommandLink::Hold hold = co_await bench.wire.link.hold();
      co_await Delay(bench.wire.scheduler, std::chrono::seconds(10));
    };
    const Flow storing(stores());
    bench.view->set_busy(true);
    const Flow end(leave());
    bench.wire.advance(200);
    EXPECT_EQ(bench.wire.sender.wire(), "@4300*");
    bench.view->set_busy(false);
  }
  EXPECT_TRUE(bench.view->board().failures().empty());

  bench.wire.advance(100);  // the hold is over
  bench.wire.link.send(Traffic(40, Batch{{0x20, 1}}));
  const Flow end(leave());
  bench.wire.advance(5000);
  EXPECT_EQ(bench.view->board().failures().size(), 1u);
  EXPECT_TRUE(bench.wire.sender.wire().ends_with("@2001*")) << "or the next port's chip got it";
}

/// The port as the start sees it.
struct PortBench : ViewBench {
  OpenResult result;
  Strings opened;
  std::optional<PortSettings> choice;
  std::vector<PortSettings> stored;
  int closed = 0;
  int dialogs = 0;
  bool user_thinks = false;
  int awaited = 0;

  explicit PortBench(int number) {
    PortSettings settings;
    settings.number = number;
    settings.description = "USB adapter";
    PortInUse::Surroundings around;
    around.open = [this](std::string name, LineSettings) -> Task<OpenResult> {
      opened.push_back(name);
      co_return result;
    };
    around.close = [this] { ++closed; };
    around.choose = [this](PortSettings) -> Task<std::optional<PortSettings>> {
      ++dialogs;
      if (user_thinks) co_await Delay(wire.scheduler, std::chrono::seconds(1));
      co_return choice;
    };
    around.open_when_there = [this] { ++awaited; };
    around.store = [this](const PortSettings& settings) { stored.push_back(settings); };
    view->use_port(settings, std::move(around));
  }
};

TEST(MainFormStart, OpensThePortOffersAFileAndThenTheRegisters) {
  PortBench bench(12);
  bench.view->start({});
  EXPECT_EQ(bench.opened, Strings{"\\\\.\\COM12"});
  EXPECT_EQ(bench.driver.find<QLineEdit>("COM port")->text(), "USB adapter");
  EXPECT_EQ(bench.console(), "COM12 open ! \n");
  EXPECT_EQ(bench.user.opens.size(), 1u);
  bench.wire.advance(300);
  bench.wire.receive("~0102^");
  bench.wire.advance(199);
  EXPECT_TRUE(bench.record.empty());
  bench.wire.advance(1);
  EXPECT_EQ(bench.record, Strings{"registers made"});
  EXPECT_EQ(bench.console(), "COM12 open ! \n\nLoad Version ok..");
  EXPECT_EQ(bench.wire.link.reply().state(), ReplyBuffer::State::idle);
  EXPECT_FALSE(bench.view->starting());

  bench.last_words = {{{0x43, 0}}};
  bench.wire.link.send(Traffic{{{reg::kKeepBracket, 1}}, {{0x20, 1}}, {{0x21, 1}}});
  bench.wire.advance(60);
  bench.view->set_busy(true);
  bench.user.answers = {Answer::yes};
  bench.view->close_serial();
  bench.view->set_busy(false);
  bench.view->close_serial();
  EXPECT_EQ(bench.closed, 0);
  bench.wire.advance(1000);
  EXPECT_EQ(bench.wire.sender.wire(), "@fa01*@2001*@fa00*@f900*@4300*@4300*") << "left as it is to be before";
  EXPECT_EQ(bench.closed, 1);
  const std::string picker = "\nThe color picker was switched off: AE and AWB run again.\n";
  EXPECT_EQ(bench.console(), "COM12 open ! \n\nLoad Version ok.." + picker + "Serial closed ..\n" + picker);
}

TEST(MainFormStart, APortThatFailsLeavesTheWindowUsableAndCanBeChanged) {
  PortBench bench(3);
  bench.result = {OpenError::busy, "COM3 is in use by another program."};
  const auto path = bench.folder.write("board.dat", setting_text(UserDataImage{}));
  bench.view->start({path, true});
  EXPECT_EQ(bench.user.messages.back().text, "Serial open Fail..\n\nCOM3 is in use by another program.");
  EXPECT_TRUE(bench.user.opens.empty()) << "the given file is loaded instead";
  EXPECT_EQ(bench.document.setting_file, path);
  bench.wire.advance(500);
  EXPECT_EQ(bench.console(), "COM3 open fail \n");
  EXPECT_EQ(bench.record, Strings{"registers made"});

  bench.click("Change COM Port...");
  EXPECT_EQ(bench.opened.size(), 1u) << "cancelled";
  bench.result = {};
  bench.choice.emplace().number = 4;
  bench.click("Change COM Port...");
  bench.wire.advance(100);
  EXPECT_EQ(bench.opened.back(), "COM4");
  EXPECT_EQ(bench.stored, std::vector{*bench.choice});

  for (QAction* action : bench.frame.findChildren<QAction*>())
    if (action->shortcut() == QKeySequence("Ctrl+Shift+X")) action->trigger();
  bench.wire.advance(100);
  EXPECT_TRUE(bench.user.questions.back().text.starts_with("Close the serial port?"));
  EXPECT_EQ(bench.closed, 0) << "as nobody said yes";

  bench.result = {OpenError::not_found, "There is no port COM4."};
  bench.last_words = {{{0x43, 0}}};
  bench.wire.sender.connected = false;
  bench.click("Change COM Port...");
  bench.wire.advance(100);
  EXPECT_EQ(bench.view->board().failures().front().text,
            "The last commands did not reach the chip: it may still measure, or keep what it is told.");
  bench.view->mark_read();
  EXPECT_EQ(bench.awaited, 1);
  EXPECT_EQ(bench.statuses.back(), "COM4 is not there. It is opened when it appears.");
  bench.view->port()->connected();
  EXPECT_TRUE(bench.console().ends_with("COM4 open ! \n"));
  bench.last_words.clear();
  bench.click("Change COM Port...");
  bench.wire.advance(100);
  bench.view->close_serial();
  bench.wire.advance(100);
  EXPECT_EQ(bench.closed, 1) << "it is no longer waited for";
  EXPECT_TRUE(bench.view->board().failures().empty()) << "nor is it said to be";

  bench.dialogs = 0;
  bench.view->set_busy(true);
  bench.click("Change COM Port...");
  EXPECT_EQ(bench.dialogs, 0);
  EXPECT_EQ(bench.user.questions.back().text,
            "Something is still being sent to the chip. Change the port all the same?");
  bench.view->set_busy(false);
  bench.user_thinks = true;
  bench.click("Change COM Port...");
  bench.click("Change COM Port...");
  EXPECT_EQ(bench.dialogs, 1) << "one dialog at a time";
}

}  // namespace
}  // namespace qv5123
