#include "base/virtual_scheduler.h"

#include <utility>

namespace qv5123 {

Scheduler::TimerId VirtualScheduler::call_after(std::chrono::milliseconds delay, Callback callback) {
  const TimerId id = ++last_id_;
  timers_.emplace(std::pair(now_ + delay, id), std::move(callback));
  due_times_.emplace(id, now_ + delay);
  return id;
}

void VirtualScheduler::cancel(TimerId id) {
  const auto found = due_times_.find(id);
  if (found == due_times_.end()) return;
  timers_.erase(std::pair(found->second, id));
  due_times_.erase(found);
}

void VirtualScheduler::post(Callback callback) {
  const MutexLock lock(mutex_);
  posted_.push_back(std::move(callback));
}

bool VirtualScheduler::serve_posted() {
  Callback callback;
  {
    const MutexLock lock(mutex_);
    if (posted_.empty()) return false;
    callback = std::move(posted_.front());
    posted_.pop_front();
  }
  callback();
  return true;
}

bool VirtualScheduler::serve_timer() {
  if (timers_.empty()) return false;
  const auto next = timers_.begin();
  now_ = next->first.first;
  const Callback callback = std::move(next->second);
  due_times_.erase(next->first.second);
  timers_.erase(next);
  callback();
  return true;
}

void VirtualScheduler::run_until(const std::function<bool()>& done) {
  while (!done() && (serve_posted() || serve_timer())) {
  }
}

}  // namespace qv5123
