#pragma once

#include <chrono>
#include <coroutine>

#include "base/scheduler.h"

namespace qv5123 {

/// Resumes its awaiter after a delay; dropping it cancels the timer.
class Delay {
 public:
  Delay(Scheduler& scheduler, std::chrono::milliseconds delay) : scheduler_(scheduler), delay_(delay) {}
  Delay(const Delay&) = delete;
  Delay& operator=(const Delay&) = delete;
  ~Delay() {
    if (waiting_) scheduler_.cancel(timer_);
  }
  bool await_ready() const { return false; }
  void await_suspend(std::coroutine_handle<> waiter) {
    waiting_ = true;
    timer_ = scheduler_.call_after(delay_, [this, waiter] {
      waiting_ = false;
      waiter.resume();
    });
  }
  void await_resume() const {}

 private:
  Scheduler& scheduler_;
  std::chrono::milliseconds delay_;
  Scheduler::TimerId timer_ = 0;
  bool waiting_ = false;
};

}  // namespace qv5123
