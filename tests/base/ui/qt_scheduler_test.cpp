#include "base/ui/qt_scheduler.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

void run_until(const std::function<bool()>& done) {
  while (!done()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
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
