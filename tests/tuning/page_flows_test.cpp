#include "tuning/page_flows.h"

#include <gtest/gtest.h>

#include "link/late_answers.h"
#include "support/fake_page_host.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

using test::FakePageHost;
using test::FakeWire;

Task<> load(PageHost& host, std::string& taken) {
  PageLoad load;
  load.trigger = 0x6B;
  load.failed = "ISP Load Fail...";
  load.take = [&taken](std::string_view reply) {
    if (reply.size() < 4) return false;
    taken = reply;
    return true;
  };
  co_await load_from_chip(host, std::move(load));
}

TEST(LoadFromChip, TheLinkKnowsHowLongEachPagesReplyIs) {
  for (const char* name : kTuningPages) {
    const auto page = make_model(name);
    const std::size_t digits = answer_digits({{page->texts().trigger, 0}}).value_or(2);
    EXPECT_TRUE(page->take_reply(std::string(digits, '0'))) << name;
    EXPECT_FALSE(page->take_reply(std::string(digits - 2, '0'))) << name;
  }
}

TEST(LoadFromChip, TakesWholeRepliesOnly) {
  FakeWire wire;
  FakePageHost host(wire);
  std::string taken;
  Flow flow(load(host, taken));
  wire.advance(50);
  wire.receive("~1234^");
  wire.advance(300);
  EXPECT_EQ(taken, "1234");
  // Ended too early, damaged, with a digit doubled, and so long that its start is lost.
  for (const std::string& block :
       {std::string("12"), std::string("aB.F"), std::string("12334"), std::string(502, '1')}) {
    flow.start(load(host, taken));
    wire.advance(50);
    wire.receive("~" + block + "^");
    wire.advance(1800);
    EXPECT_EQ(host.last_status(), "ISP Load Fail...") << block;
    EXPECT_EQ(taken, "1234");
  }
}

TEST(LoadFromChip, TheConsoleTellsWhatIsLeftOutOfAReplyThatIsTooLong) {
  FakeWire wire;
  FakePageHost host(wire);
  std::string taken;
  Flow flow(load(host, taken));
  wire.advance(50);
  wire.receive("~" + std::string(26, '1') + "^");
  wire.advance(300);
  EXPECT_EQ(host.console, "\r\n< Reply of 26 digits: the last 2 are not known and left out >");
}

Task<> save(PageHost& host) {
  LongTraffic save;
  save.traffic = flushed_singly({{0xFA, 1}, {0x37, 5}, {0x38, 6}, {0xFA, 0}});
  save.done = "Data Save Done...";
  save.settling = std::chrono::seconds(10);
  co_await send_with_progress(host, std::move(save));
}

struct SaveOnChip : testing::Test {
  FakeWire wire;
  FakePageHost host{wire};
  Flow flow{save(host)};
};

TEST_F(SaveOnChip, ShowsItsProgressAndWaitsWhileTheChipStores) {
  wire.advance(200);
  EXPECT_EQ(wire.sender.writes, (std::vector<std::string>{"@fa01*", "@3705*", "@3806*", "@fa00*"}));
  EXPECT_EQ(host.progress.at(1), 50);
  wire.link.send(Batch{{0x3A, 7}});
  wire.advance(9999);
  EXPECT_EQ(wire.sender.writes.size(), 4u) << "a chip that is storing is left alone";
  EXPECT_EQ(host.progress.back(), 99);
  wire.advance(1);
  EXPECT_EQ(host.statuses, std::vector<std::string>{"Data Save Done..."});
  EXPECT_EQ(host.busy, (std::vector<bool>{true, false}));
  wire.advance(50);
  EXPECT_EQ(wire.sender.writes.back(), "@3a07*") << "what waited leaves afterwards";
  flow.start(save(host));
  wire.advance(5000);
  wire.link.send(Batch{{0x3A, 8}});
  flow.cancel();
  wire.advance(60);
  EXPECT_EQ(wire.sender.writes.back(), "@3a08*") << "a page that goes while it waits leaves the wire free";
}

TEST_F(SaveOnChip, APortThatFailsOrCutsAWriteShortOrAChipThatGoesIsNoSuccess) {
  wire.advance(60);
  wire.sender.cuts_short = true;
  wire.advance(50);
  wire.sender.cuts_short = false;
  wire.advance(11000);
  EXPECT_EQ(wire.sender.writes, (std::vector<std::string>{"@fa01*", "@37", "@3806*", "@fa00*"}));
  EXPECT_EQ(host.last_status(), "Some of the data was cut short on the line: save again.");
  flow.start(save(host));
  wire.advance(110);
  wire.sender.connected = false;
  wire.advance(200);
  EXPECT_EQ(host.last_status(), "Nothing more reached the chip: the port failed after 50 % of the data.");
  EXPECT_EQ(host.busy.back(), false);

  wire.sender.connected = true;
  flow.start(save(host));
  wire.advance(1000);
  wire.link.connection_changed();
  wire.advance(11000);
  EXPECT_EQ(host.last_status(), "The chip was away before it had stored all: save again.");
}

TEST_F(SaveOnChip, WhatIsStillOnItsWayIsToldToNobodyOnceTheFlowIsOver) {
  wire.advance(60);
  const std::size_t told = host.progress.size();
  flow.cancel();
  wire.advance(5000);
  EXPECT_GT(wire.sender.writes.size(), 1u);
  EXPECT_EQ(host.progress.size(), told);
}

}  // namespace
}  // namespace qv5123
