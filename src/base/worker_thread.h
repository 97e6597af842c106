#pragma once

#include <deque>
#include <functional>
#include <thread>

#include "base/mutex.h"

namespace qv5123 {

/// A thread that does one thing after the other. Its end waits for what it is doing and drops the rest,
/// unless it was told to end when all is done.
class WorkerThread {
 public:
  WorkerThread() : thread_([this] { serve(); }) {}
  ~WorkerThread();
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;

  /// From any thread. `work` must not throw.
  void run(std::function<void()> work);
  /// Nothing more is begun from now on.
  void end();
  /// Lets the thread end once everything that waits is done.
  void end_when_done();
  bool ending() const;

 private:
  void serve();

  mutable Mutex mutex_;
  Condition wake_;
  std::deque<std::function<void()>> work_ GUARDED_BY(mutex_);
  bool ending_ GUARDED_BY(mutex_) = false;
  bool ending_when_done_ GUARDED_BY(mutex_) = false;
  std::thread thread_;
};

}  // namespace qv5123
