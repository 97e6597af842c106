#pragma once

#include <functional>
#include <utility>

#include "base/scheduler.h"
#include "base/task.h"
#include "base/worker_thread.h"

namespace qv5123 {

/// Work that may take long, such as trying a port or writing a file through to the disk, done away from the
/// scheduler's thread, piece after piece in the order in which it was begun.
class Background {
 public:
  virtual ~Background() = default;

  /// Begins `work` now, whether the task that awaits it lives on or not, and resumes on the scheduler's
  /// thread with what it returned. `work` must not throw and must not touch what the scheduler's thread
  /// changes.
  template <class T>
  Task<T> run(std::function<T()> work) {
    const Resolver<T> done;
    start([work = std::move(work), done]() -> Finish {
      return [done, result = work()]() mutable { done.resolve(std::move(result)); };
    });
    return wait_for(done);
  }

 protected:
  /// What is left to do on the scheduler's thread.
  using Finish = std::function<void()>;
  virtual void start(std::function<Finish()> work) = 0;

 private:
  template <class T>
  static Task<T> wait_for(Resolver<T> done) {
    co_return co_await done.pending();
  }
};

/// One thread for it. What has been begun is finished before this goes; the scheduler must outlive it.
class BackgroundThread final : public Background {
 public:
  explicit BackgroundThread(Scheduler& scheduler) : scheduler_(scheduler) {}
  ~BackgroundThread() override { thread_.end_when_done(); }

 private:
  void start(std::function<Finish()> work) override {
    thread_.run([this, work = std::move(work)]() mutable {
      Finish finish = work();
      // What the work holds goes before anybody is told that it is over.
      work = nullptr;
      scheduler_.post(std::move(finish));
    });
  }

  Scheduler& scheduler_;
  WorkerThread thread_;
};

}  // namespace qv5123
