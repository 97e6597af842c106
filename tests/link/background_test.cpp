#include "link/background.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "link/loop_scheduler.h"

namespace qv5123 {
namespace {

Task<> note(Background& background, int number, std::vector<int>& seen, std::thread::id& worker) {
  std::function<int()> work = [number, &worker] {
    worker = std::this_thread::get_id();
    return number;
  };
  seen.push_back(co_await background.run<int>(std::move(work)));
}

TEST(Background, WorksInOrderOnAThreadOfItsOwnAndAnswersOnTheSchedulers) {
  LoopScheduler scheduler;
  BackgroundThread background(scheduler);
  std::vector<int> seen;
  std::thread::id worker;
  FlowSet flows;
  for (int i = 0; i < 20; ++i) flows.spawn(note(background, i, seen, worker));
  EXPECT_TRUE(seen.empty()) << "nothing is answered before the scheduler has its turn";
  scheduler.run_until([&] { return !flows.running(); });
  std::vector<int> expected(20);
  for (int i = 0; i < 20; ++i) expected[static_cast<std::size_t>(i)] = i;
  EXPECT_EQ(seen, expected);
  EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(Background, FinishesWhatWasBegunThoughNobodyWaits) {
  LoopScheduler scheduler;
  std::atomic<int> done{0};
  std::optional<BackgroundThread> background(scheduler);
  const std::function<int()> work = [&done] { return ++done; };
  for (int i = 0; i < 5; ++i) {
    // Dropped unawaited, and awaited by a flow that is cancelled.
    if (i % 2) {
      const Task<int> dropped = background->run<int>(work);
    } else {
      const Flow cancelled([](Background& b, std::function<int()> w) -> Task<> {
        co_await b.run<int>(std::move(w));
      }(*background, work));
    }
  }
  background.reset();
  EXPECT_EQ(done, 5);
  scheduler.run_until([turn = 0]() mutable { return ++turn > 5; });
}

}  // namespace
}  // namespace qv5123
