#include "base/worker_thread.h"

#include <utility>

namespace qv5123 {

WorkerThread::~WorkerThread() {
  {
    const MutexLock lock(mutex_);
    if (!ending_when_done_) ending_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void WorkerThread::run(std::function<void()> work) {
  {
    const MutexLock lock(mutex_);
    work_.push_back(std::move(work));
  }
  wake_.notify_all();
}

void WorkerThread::end() {
  {
    const MutexLock lock(mutex_);
    ending_ = true;
  }
  wake_.notify_all();
}

void WorkerThread::end_when_done() {
  {
    const MutexLock lock(mutex_);
    ending_when_done_ = true;
  }
  wake_.notify_all();
}

bool WorkerThread::ending() const {
  const MutexLock lock(mutex_);
  return ending_;
}

void WorkerThread::serve() {
  const MutexLock lock(mutex_);
  while (true) {
    wake_.wait(mutex_, [this]() REQUIRES(mutex_) { return ending_ || ending_when_done_ || !work_.empty(); });
    if (ending_ || work_.empty()) return;
    std::function<void()> work = std::move(work_.front());
    work_.pop_front();
    const MutexUnlock unlocked(mutex_);
    work();
    // What the work holds goes before the lock is taken again.
    work = nullptr;
  }
}

}  // namespace qv5123
