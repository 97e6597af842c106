#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <utility>

#include "base/scheduler.h"

namespace qv5123::test {

/// A clock that the test moves: advance() runs everything that falls due on the way, in order.
class ManualScheduler : public Scheduler {
 public:
  std::chrono::milliseconds now() const override { return now_; }

  TimerId call_after(std::chrono::milliseconds delay, Callback callback) override {
    const TimerId id = ++last_id_;
    timers_.emplace(std::pair{now_ + delay, id}, std::move(callback));
    return id;
  }

  void cancel(TimerId id) override {
    std::erase_if(timers_, [id](const auto& timer) { return timer.first.second == id; });
  }

  void post(Callback callback) override { posted_.push_back(std::move(callback)); }

  void advance(std::chrono::milliseconds time) {
    const auto end = now_ + time;
    run_posted();
    while (!timers_.empty() && timers_.begin()->first.first <= end) {
      now_ = timers_.begin()->first.first;
      const Callback callback = std::move(timers_.begin()->second);
      timers_.erase(timers_.begin());
      callback();
      run_posted();
    }
    now_ = end;
  }

  void run_posted() {
    while (!posted_.empty()) {
      const Callback callback = std::move(posted_.front());
      posted_.pop_front();
      callback();
    }
  }

  std::size_t timers() const { return timers_.size(); }

 private:
  std::chrono::milliseconds now_{0};
  TimerId last_id_ = 0;
  std::map<std::pair<std::chrono::milliseconds, TimerId>, Callback> timers_;
  std::deque<Callback> posted_;
};

}  // namespace qv5123::test
