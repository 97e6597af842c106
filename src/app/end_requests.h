#pragma once

#include <functional>
#include <utility>

#include "base/interrupts.h"
#include "base/mutex.h"

namespace qv5123 {

/// The system's requests to end the program. The first is passed on, so that the chip and the files are left
/// as they should be; the second ends the process at once, and so does any before there is somebody to pass
/// it on to. To be made before any thread is started.
class EndRequests {
 public:
  /// `end_process` ends it at once.
  explicit EndRequests(std::function<void()> end_process)
      : end_process_(std::move(end_process)), interrupts_([this] { requested(); }) {}

  /// `on_first` is called on another thread. Empty: nobody is there any more.
  void pass_on_to(std::function<void()> on_first) {
    const MutexLock lock(mutex_);
    on_first_ = std::move(on_first);
  }

 private:
  void requested() {
    const MutexLock lock(mutex_);
    const auto on_first = std::exchange(on_first_, {});
    if (!on_first) return end_process_();
    on_first();
  }

  const std::function<void()> end_process_;
  Mutex mutex_;
  std::function<void()> on_first_ GUARDED_BY(mutex_);
  Interrupts interrupts_;
};

}  // namespace qv5123
