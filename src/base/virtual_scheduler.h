#pragma once

#include <deque>
#include <map>

#include "base/mutex.h"
#include "base/scheduler.h"

namespace qv5123 {

/// A loop whose time passes only while nothing is to be done: then it is the next timer's at once. What takes
/// minutes is over in moments, and comes to the same.
class VirtualScheduler final : public Scheduler {
 public:
  std::chrono::milliseconds now() const override { return now_; }
  TimerId call_after(std::chrono::milliseconds delay, Callback callback) override;
  void cancel(TimerId id) override;
  void post(Callback callback) override;

  /// Serves posted calls and timers until `done` says true, or nothing is left to come.
  void run_until(const std::function<bool()>& done);

 private:
  bool serve_posted();
  bool serve_timer();

  std::chrono::milliseconds now_{0};
  TimerId last_id_ = 0;
  std::map<std::pair<std::chrono::milliseconds, TimerId>, Callback> timers_;
  std::map<TimerId, std::chrono::milliseconds> due_times_;
  Mutex mutex_;
  std::deque<Callback> posted_ GUARDED_BY(mutex_);
};

}  // namespace qv5123
