// The port with all its threads under traffic, while it is closed, opened, pulled out and ended. What matters
// happens between the threads, so this is where the thread sanitizer looks.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/background.h"
#include "base/loop_scheduler.h"
#include "console/image_transfer.h"
#include "link/port_session.h"
#include "simulator/simulated_board.h"
#include "support/fake_prompts.h"
#include "support/faulty_line.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using namespace std::chrono_literals;

/// A session on a simulated board in real time.
struct Fire {
  explicit Fire(const FaultRates& faults) : session(scheduler, take_board(faults), events()) {}

  std::unique_ptr<SerialDevice> take_board(const FaultRates& faults) {
    LineOptions options;
    options.faults = faults;
    auto owned = std::make_unique<SimulatedBoard>(options);
    board = owned.get();
    return owned;
  }
  PortSessionEvents events() {
    PortSessionEvents events;
    events.console = [this](const std::string& text) { received += text.size(); };
    events.trouble = [this](const std::string&) { ++troubles; };
    return events;
  }
  void pass(std::chrono::milliseconds time) {
    bool over = false;
    scheduler.call_after(time, [&] { over = true; });
    scheduler.run_until([&] { return over; });
  }
  bool reach(const std::function<bool()>& done) {
    bool late = false;
    const auto timer = scheduler.call_after(20s, [&] { late = true; });
    scheduler.run_until([&] { return late || done(); });
    scheduler.cancel(timer);
    return !late;
  }

  LoopScheduler scheduler;
  SimulatedBoard* board = nullptr;
  std::size_t received = 0;
  int troubles = 0;
  PortSession session;
};

Task<> open(PortSession& session) {
  co_await session.open("board", {});
}
/// Requests, one after the other, for as long as it lives.
Task<> keep_asking(CommandLink& link, int& answers) {
  while (true) {
    const int value = co_await link.wide_read(0x922);
    answers += value >= 0;
  }
}

/// Downloads of one firmware file over a session, which is read on a thread of its own.
struct Downloads {
  explicit Downloads(Fire& fire) : work(fire.scheduler), link(fire.session.link()) {}

  Task<> run(std::optional<TransferEnd>& end) {
    user.paths = {path};
    end = co_await transfer.run(TransferKind::firmware);
  }

  const test::TemporaryFolder folder;
  const std::filesystem::path path = folder.write("fw.bin", std::string(1500, 'f'));
  BackgroundThread work;
  CommandLink& link;
  CQV5123Doc document;
  test::FakePrompts user;
  std::string console;
  ImageTransfer transfer{
      link,
      document,
      user,
      work,
      {[](int) {}, [](const std::string&) {}, [this](const std::string& t) { console += t; }}};
};

TEST(SessionUnderFire, LivesThroughEveryFaultAndWorksAfterwards) {
  for (const test::Fault& fault : test::faults()) {
    SCOPED_TRACE(fault.name);
    Fire fire(fault.rates);
    FlowSet flows;
    int answers = 0;
    flows.spawn(open(fire.session));
    flows.spawn(keep_asking(fire.session.link(), answers));
    for (int i = 0; i < 4; ++i) {
      fire.pass(50ms);
      if (fault.unplug) i % 2 ? fire.board->plug_in() : fire.board->unplug();
      if (fault.flood_step > 0) fire.board->with_chip([](SimulatedChip& chip) { chip.announce(); });
    }
    fire.board->plug_in();
    const int before = answers;
    EXPECT_TRUE(fire.reach([&] { return answers > before; })) << "there are answers again";
  }
}

TEST(SessionUnderFire, IsClosedAndOpenedAnewUnderTraffic) {
  Fire fire({});
  FlowSet flows;
  int answers = 0;
  flows.spawn(keep_asking(fire.session.link(), answers));
  for (int i = 0; i < 12; ++i) {
    flows.spawn(open(fire.session));
    fire.pass(std::chrono::milliseconds(i * 9));
    if (i % 3 == 0) fire.session.close();
    if (i % 4 == 0) fire.session.link().send(Traffic(20, Batch{{0x37, 0x11}}));
  }
  const int before = answers;
  EXPECT_TRUE(fire.reach([&] { return answers > before; }));
}

TEST(SessionUnderFire, ADownloadIsCutOffAnywhereAndTheNextOneArrives) {
  Fire fire({});
  Downloads downloads(fire);
  FlowSet flows;
  flows.spawn(open(fire.session));
  ASSERT_TRUE(fire.reach([&] { return fire.session.connected(); }));
  for (const auto cut : {10ms, 55ms, 120ms}) {
    std::optional<TransferEnd> end;
    flows.spawn(downloads.run(end));
    fire.pass(cut);
    fire.board->unplug();
    EXPECT_TRUE(fire.reach([&] { return end.has_value(); }));
    EXPECT_NE(end, TransferEnd::sent);
    fire.board->plug_in();
    ASSERT_TRUE(fire.reach([&] { return fire.session.connected(); }));
  }
  std::optional<TransferEnd> end;
  flows.spawn(downloads.run(end));
  EXPECT_TRUE(fire.reach([&] { return end.has_value(); }));
  EXPECT_EQ(end, TransferEnd::sent) << downloads.console;
  fire.board->with_chip([](SimulatedChip& chip) { EXPECT_EQ(chip.state().firmware.at(1499), 'f'); });
}

TEST(SessionUnderFire, EndsInTheMiddleOfEverything) {
  for (int round = 0; round < 16; ++round) {
    Fire fire({});
    Downloads downloads(fire);
    std::optional<TransferEnd> end;
    FlowSet flows;
    int answers = 0;
    flows.spawn(open(fire.session));
    if (round % 2) fire.reach([&] { return fire.session.connected(); });
    flows.spawn(keep_asking(fire.session.link(), answers));
    fire.session.link().send(Traffic(30, Batch{{0x37, 0x11}}));
    if (round % 8 > 4) flows.spawn(downloads.run(end));
    if (round % 4 > 1) fire.pass(std::chrono::milliseconds(round * 7));
    if (round % 3 == 0) fire.board->unplug();
    if (round % 5 == 0) fire.board->with_chip([](SimulatedChip& chip) { chip.announce(); });
  }
}

}  // namespace
}  // namespace qv5123
