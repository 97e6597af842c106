#include "base/loop_scheduler.h"

#include <utility>

namespace qv5123 {

std::chrono::milliseconds LoopScheduler::now() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
}

Scheduler::TimerId LoopScheduler::call_after(std::chrono::milliseconds delay, Callback callback) {
  const Clock::time_point at = Clock::now() + delay;
  const TimerId id = ++last_id_;
  timers_.emplace(Due{at, id}, std::move(callback));
  due_times_.emplace(id, at);
  return id;
}

void LoopScheduler::cancel(TimerId id) {
  const auto found = due_times_.find(id);
  if (found == due_times_.end()) return;
  timers_.erase(Due{found->second, id});
  due_times_.erase(found);
}

void LoopScheduler::post(Callback callback) {
  {
    const MutexLock lock(mutex_);
    posted_.push_back(std::move(callback));
  }
  posted_signal_.notify_all();
}

void LoopScheduler::run_until(const std::function<bool()>& done) {
  while (!done()) {
    if (const Callback callback = next()) callback();
  }
}

/// What is to be called now; nothing after a wait for it.
Scheduler::Callback LoopScheduler::next() {
  const MutexLock lock(mutex_);
  if (Callback callback = take_one()) return callback;
  const auto is_posted = [this]() REQUIRES(mutex_) { return !posted_.empty(); };
  if (timers_.empty()) {
    posted_signal_.wait(mutex_, is_posted);
  } else {
    posted_signal_.wait_until(mutex_, timers_.begin()->first.at, is_posted);
  }
  return {};
}

// Posted calls go first: what came from the chip is there before the wait for it is over. Without end they
// must not hold up the timers.
Scheduler::Callback LoopScheduler::take_one() {
  Callback callback;
  const bool timer_waits = posts_in_a_row_ >= kMostPostsInARow && timer_is_due();
  if (!posted_.empty() && !timer_waits) {
    ++posts_in_a_row_;
    callback = std::move(posted_.front());
    posted_.pop_front();
  } else if (timer_is_due()) {
    posts_in_a_row_ = 0;
    callback = std::move(timers_.begin()->second);
    due_times_.erase(timers_.begin()->first.id);
    timers_.erase(timers_.begin());
  } else {
    posts_in_a_row_ = 0;
  }
  return callback;
}

}  // namespace qv5123
