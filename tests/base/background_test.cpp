#include "base/background.h"

#include <gtest/gtest.h>

#include <optional>

#include "base/loop_scheduler.h"

namespace qv5123 {
namespace {

Task<> note(Background& background, std::vector<int>& seen, std::function<int()> work) {
  seen.push_back(co_await background.run<int>(std::move(work)));
}

TEST(Background, WorksInOrderOnAThreadOfItsOwnAndFinishesThoughNobodyWaits) {
  LoopScheduler scheduler;
  std::optional<BackgroundThread> background(scheduler);
  std::vector<int> done;
  std::vector<int> seen;
  std::thread::id worker;
  for (int i = 0; i < 5; ++i) {
    const Flow cancelled(note(*background, seen, [&done, &worker, i] {
      worker = std::this_thread::get_id();
      done.push_back(i);
      return i;
    }));
  }
  background.reset();
  EXPECT_EQ(done, (std::vector<int>{0, 1, 2, 3, 4}));
  EXPECT_NE(worker, std::this_thread::get_id());
  scheduler.run_until([turn = 0]() mutable { return ++turn > 5; });
  EXPECT_TRUE(seen.empty());
}

TEST(LoopScheduler, CallsPostedWithoutEndDoNotHoldUpATimer) {
  LoopScheduler scheduler;
  bool fired = false;
  std::function<void()> again = [&] { scheduler.post(again); };
  again();
  scheduler.call_after(std::chrono::milliseconds(0), [&] { fired = true; });
  scheduler.run_until([&, turn = 0]() mutable { return fired || ++turn > 1000; });
  EXPECT_TRUE(fired);
}

}  // namespace
}  // namespace qv5123
