#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace qv5123 {

/// Makes a thread that hands things on wait while too many of them are not dealt with yet.
class Throttle {
 public:
  explicit Throttle(std::size_t most) : room_(most) {}

  /// Waits for room and takes it. False once it has ended.
  bool enter() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return room_ > 0 || ended_; });
    if (ended_) return false;
    --room_;
    return true;
  }
  /// One thing is dealt with.
  void leave() {
    {
      const std::lock_guard lock(mutex_);
      ++room_;
    }
    changed_.notify_one();
  }
  /// Nobody waits from now on.
  void end() {
    {
      const std::lock_guard lock(mutex_);
      ended_ = true;
    }
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t room_;
  bool ended_ = false;
};

}  // namespace qv5123
