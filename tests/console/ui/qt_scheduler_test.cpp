#include "console/ui/qt_scheduler.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <thread>
#include <vector>

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

void run_until(const std::function<bool()>& done) {
  while (!done()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

TEST(QtScheduler, TimersComeInTheirOrderAndCancelledOnesNever) {
  QtScheduler scheduler;
  std::vector<int> order;
  bool over = false;
  scheduler.call_after(milliseconds(20), [&] { order.push_back(2); });
  const auto cancelled = scheduler.call_after(milliseconds(10), [&] { order.push_back(99); });
  scheduler.call_after(milliseconds(5), [&] {
    order.push_back(1);
    scheduler.cancel(cancelled);
    scheduler.cancel(cancelled);
  });
  const auto begin = scheduler.now();
  scheduler.call_after(milliseconds(40), [&] { over = true; });
  run_until([&] { return over; });
  EXPECT_EQ(order, (std::vector<int>{1, 2}));
  EXPECT_GE(scheduler.now() - begin, milliseconds(39));
}

TEST(QtScheduler, PostsOfOtherThreadsRunHereInOrderAndMayPostAgain) {
  QtScheduler scheduler;
  std::vector<int> order;
  bool over = false;
  const auto here = std::this_thread::get_id();
  std::thread other([&] {
    for (int i = 0; i < 1000; ++i) {
      scheduler.post([&, i] {
        EXPECT_EQ(std::this_thread::get_id(), here);
        order.push_back(i);
      });
    }
    scheduler.post([&] { scheduler.post([&] { over = true; }); });
  });
  run_until([&] { return over; });
  other.join();
  ASSERT_EQ(order.size(), 1000u);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(QtScheduler, WhatAPostedCallHoldsMayPostWhenItGoes) {
  QtScheduler scheduler;
  bool over = false;
  const std::shared_ptr<int> held(new int(0), [&](int* value) {
    delete value;
    scheduler.post([&] { over = true; });
  });
  scheduler.post([held] {});
  const_cast<std::shared_ptr<int>&>(held).reset();
  run_until([&] { return over; });
}

TEST(QtScheduler, AFloodOfPostsLeavesTimersTheirTurn) {
  QtScheduler scheduler;
  bool timer_ran = false;
  std::function<void()> again = [&] {
    if (!timer_ran) scheduler.post(again);
  };
  scheduler.post(again);
  scheduler.call_after(milliseconds(1), [&] { timer_ran = true; });
  run_until([&] { return timer_ran; });
}

}  // namespace
}  // namespace qv5123
