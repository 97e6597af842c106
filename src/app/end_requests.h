#pragma once

#include <chrono>
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
  /// How long the program may take for its end; one that does not get there, since the window's thread stands
  /// still, is ended all the same.
  static constexpr std::chrono::milliseconds kEndedWithin{3000};

  /// `code` is the exit code of a process that is ended at once.
  explicit EndRequests(int code, std::chrono::milliseconds ended_within = kEndedWithin)
      : code_(code), interrupts_([this] { requested(); }, {"", code, ended_within}) {}

  /// `on_first` is called on another thread. Empty: nobody is there any more.
  void pass_on_to(std::function<void()> on_first) {
    const MutexLock lock(mutex_);
    on_first_ = std::move(on_first);
  }

 private:
  void requested() {
    const MutexLock lock(mutex_);
    const auto on_first = std::exchange(on_first_, {});
    if (!on_first) end_program_at_once("", code_);
    on_first();
  }

  const int code_;
  Mutex mutex_;
  std::function<void()> on_first_ GUARDED_BY(mutex_);
  Interrupts interrupts_;
};

}  // namespace qv5123
