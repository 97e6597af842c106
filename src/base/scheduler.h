#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace qv5123 {

/// The thread on which flows run, with its clock: the Qt event loop in the window, a plain loop on the
/// command line, a clock that the test moves in tests.
class Scheduler {
 public:
  using Callback = std::function<void()>;
  using TimerId = std::uint64_t;

  virtual ~Scheduler() = default;

  /// Time since an arbitrary start, never running backwards.
  virtual std::chrono::milliseconds now() const = 0;
  /// Calls `callback` once on this thread, after `delay`.
  virtual TimerId call_after(std::chrono::milliseconds delay, Callback callback) = 0;
  /// The callback of a cancelled timer is never called. An id that is over or unknown is ignored.
  virtual void cancel(TimerId id) = 0;
  /// Calls `callback` on this thread, after what was posted before. The one call allowed from any thread.
  virtual void post(Callback callback) = 0;
};

}  // namespace qv5123
