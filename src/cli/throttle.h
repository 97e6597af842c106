#pragma once

#include <cstddef>

#include "base/mutex.h"

namespace qv5123 {

/// Makes a thread that hands things on wait while too many of them are not dealt with yet.
class Throttle {
 public:
  explicit Throttle(std::size_t most) : room_(most) {}

  /// Waits for room and takes it. False once it has ended.
  bool enter() {
    const MutexLock lock(mutex_);
    changed_.wait(mutex_, [this]() REQUIRES(mutex_) { return room_ > 0 || ended_; });
    if (ended_) return false;
    --room_;
    return true;
  }
  /// One thing is dealt with.
  void leave() {
    {
      const MutexLock lock(mutex_);
      ++room_;
    }
    changed_.notify_one();
  }
  /// Nobody waits from now on.
  void end() {
    {
      const MutexLock lock(mutex_);
      ended_ = true;
    }
    changed_.notify_all();
  }

 private:
  Mutex mutex_;
  Condition changed_;
  std::size_t room_ GUARDED_BY(mutex_);
  bool ended_ GUARDED_BY(mutex_) = false;
};

}  // namespace qv5123
