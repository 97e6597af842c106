#pragma once

#include <QThreadPool>
#include <functional>
#include <utility>

#include "link/scheduler.h"
#include "link/task.h"

namespace qv5123 {

/// Calls into the system that may take long, such as trying a port, made on a thread of their own. What has
/// begun is waited for when this goes; the scheduler must outlive it.
class Background {
 public:
  explicit Background(Scheduler& scheduler) : scheduler_(scheduler) {}

  /// Resumes on the scheduler's thread with what `work` returned. `work` must not throw.
  template <class T>
  Task<T> run(std::function<T()> work) {
    Resolver<T> done;
    pool_.start([&scheduler = scheduler_, work = std::move(work), done] {
      scheduler.post([done, result = work()] { done.resolve(result); });
    });
    co_return co_await done.pending();
  }

 private:
  Scheduler& scheduler_;
  QThreadPool pool_;
};

}  // namespace qv5123
