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
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(callback));
  }
  posted_signal_.notify_all();
}

void LoopScheduler::run_until(const std::function<bool()>& done) {
  std::unique_lock lock(mutex_);
  while (true) {
    lock.unlock();
    if (done()) return;
    lock.lock();
    if (serve_one(lock)) continue;
    if (timers_.empty()) {
      posted_signal_.wait(lock, [this] { return !posted_.empty(); });
    } else {
      posted_signal_.wait_until(lock, timers_.begin()->first.at, [this] { return !posted_.empty(); });
    }
  }
}

// Posted calls go first: what came from the chip is there before the wait for it is over. Without end they
// must not hold up the timers.
bool LoopScheduler::serve_one(std::unique_lock<std::mutex>& lock) {
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
    return false;
  }
  lock.unlock();
  callback();
  lock.lock();
  return true;
}

}  // namespace qv5123
