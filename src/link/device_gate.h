#pragma once

#include "base/mutex.h"

namespace qv5123 {

/// Lets threads use a device between open and close, and lets close wait until the last of them has left.
/// Without it a close would pull the handle from under a thread that is about to wait on it.
class DeviceGate {
 public:
  /// Held while a thread is inside; false when the gate was shut already.
  class Pass {
   public:
    explicit Pass(DeviceGate& gate) : gate_(gate), inside_(gate.enter()) {}
    ~Pass() {
      if (inside_) gate_.leave();
    }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    explicit operator bool() const { return inside_; }

   private:
    DeviceGate& gate_;
    const bool inside_;
  };

  bool is_open() const {
    const MutexLock lock(mutex_);
    return open_;
  }
  void open() {
    const MutexLock lock(mutex_);
    open_ = true;
  }
  /// Lets nobody in any more.
  void shut() {
    const MutexLock lock(mutex_);
    open_ = false;
  }
  /// Returns once nobody is inside. To be called after shut() and after whatever releases those who are.
  void await_empty() {
    const MutexLock lock(mutex_);
    left_.wait(mutex_, [this]() REQUIRES(mutex_) { return inside_ == 0; });
  }

 private:
  bool enter() {
    const MutexLock lock(mutex_);
    inside_ += open_ ? 1 : 0;
    return open_;
  }
  // Signalled under the lock: the gate may be gone as soon as await_empty() has seen the last one leave.
  void leave() {
    const MutexLock lock(mutex_);
    if (--inside_ == 0) left_.notify_all();
  }

  mutable Mutex mutex_;
  Condition left_;
  bool open_ GUARDED_BY(mutex_) = false;
  int inside_ GUARDED_BY(mutex_) = 0;
};

}  // namespace qv5123
