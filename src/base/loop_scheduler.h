#pragma once

#include <deque>
#include <functional>
#include <map>

#include "base/mutex.h"
#include "base/scheduler.h"

namespace qv5123 {

/// A plain event loop on the thread that calls run(), for programs without a window.
class LoopScheduler : public Scheduler {
 public:
  std::chrono::milliseconds now() const override;
  TimerId call_after(std::chrono::milliseconds delay, Callback callback) override;
  void cancel(TimerId id) override;
  void post(Callback callback) override;

  /// Serves timers and posted calls until `done` says true; it is asked after each call served.
  void run_until(const std::function<bool()>& done);

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr int kMostPostsInARow = 64;
  bool timer_is_due() const { return !timers_.empty() && timers_.begin()->first.at <= Clock::now(); }
  Callback next();
  Callback take_one() REQUIRES(mutex_);

  struct Due {
    Clock::time_point at;
    TimerId id;
    auto operator<=>(const Due&) const = default;
  };
  const Clock::time_point start_ = Clock::now();
  std::map<Due, Callback> timers_;
  std::map<TimerId, Clock::time_point> due_times_;
  TimerId last_id_ = 0;
  Mutex mutex_;
  Condition posted_signal_;
  std::deque<Callback> posted_ GUARDED_BY(mutex_);
  int posts_in_a_row_ = 0;
};

}  // namespace qv5123
