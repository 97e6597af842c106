#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "link/indirect_access.h"
#include "link/link_report.h"
#include "support/fake_wire.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;
using test::FakeWire;
using testing::HasSubstr;
using testing::Not;

Task<> ask(CommandLink& link, Batch request) {
  co_await link.request(std::move(request), milliseconds(400));
}

LinkHealth health_after(int idle, std::size_t times) {
  LinkHealth health;
  // "@9409*@9422*" out and "~12^" back take 8.3 ms at 19200 baud.
  for (std::size_t i = 0; i < times; ++i) {
    health.asked(false, isp_read_request(0x922));
    health.answered({LateAnswers::Kind::own, milliseconds(8 + idle)}, 2, false);
  }
  return health;
}

LinkReport report_of(int idle, std::optional<milliseconds> timer = {}, std::size_t times = 20) {
  return {"ttyUSB0", true, health_after(idle, times), timer};
}

TEST(LinkHealth, CountsWhatGoesOverTheLine) {
  FakeWire wire;
  const auto exchange = [&](int address, int answers_after, const std::string& answer) {
    const Flow flow(ask(wire.link, isp_read_request(address)));
    wire.advance(50 + answers_after);
    wire.receive(answer);
    wire.advance(2000);
  };
  wire.receive("hello ~0102^");
  exchange(0x922, 30, "~12^");
  exchange(0x922, 10, "~34^");
  exchange(0x922, 20, "~5x^");                            // damaged
  exchange(0x922, 20, "~" + std::string(40, '0') + "^");  // a page's
  exchange(0x922, 500, "~56^");                           // too late for whoever asked
  wire.link.send(Traffic{{{0x20, 1}, {0x21, 2}}, {{0x22, 3}}});
  wire.advance(200);

  const LinkHealth& health = wire.link.health();
  const LinkCounts& counts = health.counts();
  EXPECT_EQ(counts.frames_sent, 5 * 2 + 3u);
  EXPECT_EQ(counts.bytes_sent, 6 * counts.frames_sent);
  EXPECT_EQ(counts.bytes_received, 12 + 4 * 4 + 42u);
  EXPECT_EQ(counts.replies_received, 6u);
  EXPECT_EQ(counts.requests, 5u);
  EXPECT_EQ(counts.retries, 1u) << "the page's reply left a request owed";
  EXPECT_EQ(counts.unanswered, 2u);
  EXPECT_EQ(counts.refused, 2u);
  EXPECT_EQ(counts.late, 1u);
  EXPECT_EQ(health.median(), milliseconds(30)) << "of 30 and 10, damaged and late ones left out";
  EXPECT_EQ(health.worst(), milliseconds(30));
}

TEST(LinkHealth, TellsAnAdapterThatKeepsShortAnswersBack) {
  EXPECT_FALSE(waits_for_latency_timer(report_of(2)));
  EXPECT_TRUE(waits_for_latency_timer(report_of(16)));
  EXPECT_FALSE(waits_for_latency_timer(report_of(16, {}, 7))) << "too few to say";
  EXPECT_FALSE(waits_for_latency_timer(report_of(60))) << "a slow chip";
  EXPECT_FALSE(waits_for_latency_timer(report_of(16, milliseconds(1)))) << "the system knows better";
  EXPECT_TRUE(waits_for_latency_timer(report_of(9, milliseconds(16))));
  EXPECT_FALSE(waits_for_latency_timer(report_of(2, milliseconds(16)))) << "does no harm here";
  EXPECT_THAT(latency_hint(report_of(9, milliseconds(16))),
              HasSubstr("stands at 16 ms: each short answer takes 9 ms"));

  const std::string text = report_text(report_of(16));
  EXPECT_THAT(text, HasSubstr("Port: ttyUSB0, open\n"));
  EXPECT_THAT(text, HasSubstr("Round trip: median 24 ms, worst 24 ms\n"));
  EXPECT_THAT(text, HasSubstr("To lower it:\n"));
  EXPECT_THAT(report_text(report_of(2)), Not(HasSubstr("lower")));
  EXPECT_THAT(report_text(LinkReport()), HasSubstr("Port: none yet\nSent: 0 bytes, 0 register writes\n"));
}

TEST(LinkHealth, KeepsTheLastRoundTripsForTheMedianAndTheWorstForGood) {
  LinkHealth health = health_after(1000, 1);
  for (std::size_t i = 0; i < LinkHealth::kKept; ++i)
    health.answered({LateAnswers::Kind::own, milliseconds(i < 100 ? 5 : 7)}, 400, false);
  EXPECT_EQ(health.median(), milliseconds(7));
  EXPECT_EQ(health.worst(), milliseconds(1008));
  EXPECT_EQ(health.idle(), std::nullopt) << "long answers fill what an adapter hands on at once";
}

}  // namespace
}  // namespace qv5123
