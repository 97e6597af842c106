#include "link/port_session.h"

#include <gtest/gtest.h>

#include "base/loop_scheduler.h"
#include "link/in_process_device.h"
#include "link/standstill.h"
#include "support/poll_until.h"

namespace qv5123 {
namespace {

/// A session on a line whose far end only listens.
struct SessionOnLine {
  explicit SessionOnLine(InProcessDevice::Pace line_pace = {})
      : pace(std::move(line_pace)), session(scheduler, take_device(), events()) {}

  std::unique_ptr<SerialDevice> take_device() {
    auto owned = std::make_unique<InProcessDevice>(
        [this](std::span<const std::uint8_t> bytes) {
          writing = true;
          const std::lock_guard lock(mutex);
          sent.append(bytes.begin(), bytes.end());
        },
        pace);
    line = owned.get();
    return owned;
  }

  PortSessionEvents events() {
    PortSessionEvents events;
    events.status = [this](const std::string& text) { statuses.push_back(text); };
    events.connected = [this](bool now) { connected.push_back(now); };
    return events;
  }

  /// Runs `task` to its end, at most half a minute.
  void run(Task<> task) {
    Flow flow(std::move(task));
    run_until([&] { return !flow.running(); });
  }
  void run_until(std::function<bool()> done) {
    bool late = false;
    const auto timer = scheduler.call_after(std::chrono::seconds(30), [&] { late = true; });
    scheduler.run_until([&] { return late || done(); });
    scheduler.cancel(timer);
    EXPECT_FALSE(late);
  }
  std::string wire() {
    const std::lock_guard lock(mutex);
    return sent;
  }

  InProcessDevice::Pace pace;
  LoopScheduler scheduler;
  std::mutex mutex;
  std::string sent;
  std::atomic<bool> writing{false};
  InProcessDevice* line = nullptr;
  std::vector<std::string> statuses;
  std::vector<bool> connected;
  PortSession session;
};

Task<> open(PortSession& session, OpenResult& result) {
  result = co_await session.open("line", {});
}

Task<> send_job(CommandLink& link, Job job, JobResult& result, bool& over) {
  result = co_await link.send(std::move(job));
  over = true;
}

TEST(PortSession, AnUnpluggedPortIsBackWithinSecondsAndNothingIsSentTwice) {
  SessionOnLine on;
  OpenResult opened;
  on.run(open(on.session, opened));
  // The greeting, and in the same breath an answer.
  const std::string said = "chip\r\n~010000000002010203040506000000000009515635313230303432^~5a^";
  on.line->deliver({reinterpret_cast<const std::uint8_t*>(said.data()), said.size()});
  on.run_until([&] { return on.session.greeting().has_value(); });
  EXPECT_EQ(on.session.greeting()->serial_number, "QV5120042");
  EXPECT_EQ(on.session.greeting()->versions[1], (std::array{12, 34, 56}));
  on.line->hang_up();
  on.run_until([&] { return !on.session.connected(); });
  EXPECT_FALSE(on.session.greeting()) << "another board may come back";
  EXPECT_EQ(on.statuses, std::vector<std::string>{"line is gone. It is opened again when it comes back."});
  on.session.link().send(Batch{{0x01, 0x00}});
  on.run_until([&] { return on.session.link().jobs_waiting() == 0; });

  on.line->plug_in();
  const auto since = on.scheduler.now();
  on.run_until([&] { return on.session.connected(); });
  EXPECT_LT(on.scheduler.now() - since, std::chrono::seconds(5));
  EXPECT_EQ(on.statuses.back(), "line is back.");
  EXPECT_EQ(on.session.health().counts().reconnects, 1u);
  on.session.link().send(Batch{{0x01, 0x04}});
  on.run_until([&] { return on.session.link().jobs_waiting() == 0; });
  EXPECT_EQ(on.wire(), "@0104*") << "what was sent while the line was gone is gone";
}

TEST(PortSession, APortThatIsNotThereIsOpenedWhenItAppears) {
  SessionOnLine on;
  on.line->hang_up();
  OpenResult opened;
  on.run(open(on.session, opened));
  EXPECT_EQ(opened.error, OpenError::not_found);
  EXPECT_TRUE(on.connected.empty()) << "nobody is told of a port that was never there";
  on.session.open_when_there();
  on.line->plug_in();
  on.run_until([&] { return !on.statuses.empty(); });
  EXPECT_TRUE(on.session.connected());
  EXPECT_EQ(on.statuses, std::vector<std::string>{"line is there and was opened."});
}

TEST(PortSession, ClosingGivesUpALostPortAndAnOpenUnderWay) {
  SessionOnLine on;
  OpenResult opened;
  on.run(open(on.session, opened));
  on.line->hang_up();
  on.run_until([&] { return !on.session.connected(); });
  on.session.close();
  on.line->plug_in();
  Flow opening(open(on.session, opened));
  on.session.close();
  on.run_until([&] { return !opening.running(); });
  EXPECT_FALSE(opened.ok());
  EXPECT_FALSE(on.session.connected());
  EXPECT_EQ(on.connected, (std::vector<bool>{true, false}));
}

Task<> close(PortSession& session, bool& closed) {
  closed = co_await session.close();
}

TEST(PortSession, ClosingDoesNotWaitForADriverThatStandsStill) {
  SessionOnLine on;
  OpenResult opened;
  on.run(open(on.session, opened));
  std::unique_lock standstill(on.mutex);
  on.session.link().send(Batch{{0x01, 0x00}});
  test::poll_until([&] { return on.writing.load(); });
  bool closed = true;
  on.run(close(on.session, closed));
  EXPECT_FALSE(closed);
}

// On the line of a session that stands still from its 17th byte on.
TEST(PortSession, CancelEndsAWriteThatStandsStillAndTheImageWithIt) {
  SessionOnLine on([&on](std::size_t, const LineSettings&) -> std::chrono::nanoseconds {
    return std::chrono::hours(on.wire().empty() ? 0 : 1);
  });
  OpenResult opened;
  on.run(open(on.session, opened));
  Job image;
  image.chunks.push_back({{}, std::vector<std::uint8_t>(20, 'A')});
  image.chunks.push_back({{}, {'B'}});
  JobResult result;
  bool over = false;
  Flow sending(send_job(on.session.link(), std::move(image), result, over));
  on.run_until([&] {
    if (on.wire().empty()) on.scheduler.post([] {});
    return !on.wire().empty();
  });
  on.session.link().cancel_running_job();
  on.run_until([&] { return over; });
  EXPECT_TRUE(result.failed);
  EXPECT_FALSE(result.lost);
  EXPECT_EQ(result.chunks_sent, 0u) << "what comes behind a block that was cut short would spoil more";
  EXPECT_EQ(result.bytes_sent, 16u);
  EXPECT_EQ(on.wire(), std::string(16, 'A'));
}

TEST(Standstill, IsSaidOnceAfterFiveSecondsWithoutAByteAndTakenBack) {
  Standstill line;
  const Standstill::Time start{};
  const auto at = [&](int milliseconds) { return start + std::chrono::milliseconds(milliseconds); };
  line.begin(at(0));
  EXPECT_EQ(line.news(at(4999)), std::nullopt);
  EXPECT_TRUE(line.goes_on(1, at(4999), false)) << "a slow adapter";
  EXPECT_EQ(line.news(at(9998)), std::nullopt);
  EXPECT_EQ(line.news(at(9999)), true);
  EXPECT_EQ(line.news(at(30000)), std::nullopt);
  EXPECT_TRUE(line.goes_on(1, at(30000), false)) << "it is for the user to end it";
  EXPECT_FALSE(line.goes_on(1, at(30000), true));
  line.begin(at(30100));
  EXPECT_EQ(line.news(at(30100)), std::nullopt);
  EXPECT_TRUE(line.goes_on(0, at(30399), true)) << "a write that moves may end";
  EXPECT_TRUE(line.goes_on(6, at(30400), false));
  EXPECT_EQ(line.news(at(30400)), false);
}

TEST(PortSession, AJobDoesNotGoOnOnAPortThatWasOpenedAnew) {
  SessionOnLine on;
  OpenResult opened;
  on.run(open(on.session, opened));
  Job image;
  image.chunks.push_back({{}, {'A'}});
  image.chunks.push_back({{}, {'B'}, Pacing::bulk, std::chrono::minutes(1)});
  std::size_t sent = 0;
  image.on_progress = [&](std::size_t chunks) { sent = chunks; };
  JobResult result;
  bool over = false;
  Flow sending(send_job(on.session.link(), std::move(image), result, over));
  on.run_until([&] { return sent == 1; });
  on.run(open(on.session, opened));
  EXPECT_TRUE(opened.ok());
  on.run_until([&] { return over; });
  EXPECT_TRUE(result.failed);
  EXPECT_EQ(on.wire(), "A");
}

}  // namespace
}  // namespace qv5123
