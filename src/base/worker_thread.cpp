#include "base/worker_thread.h"

#include <utility>

namespace qv5123 {

WorkerThread::~WorkerThread() {
  {
    const std::lock_guard lock(mutex_);
    if (!ending_when_done_) ending_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void WorkerThread::run(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
  }
  wake_.notify_all();
}

void WorkerThread::end() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  wake_.notify_all();
}

void WorkerThread::end_when_done() {
  {
    const std::lock_guard lock(mutex_);
    ending_when_done_ = true;
  }
  wake_.notify_all();
}

bool WorkerThread::ending() const {
  const std::lock_guard lock(mutex_);
  return ending_;
}

void WorkerThread::serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return ending_ || ending_when_done_ || !work_.empty(); });
    if (ending_ || work_.empty()) return;
    std::function<void()> work = std::move(work_.front());
    work_.pop_front();
    lock.unlock();
    work();
    // What the work holds goes before the lock is taken again.
    work = nullptr;
    lock.lock();
  }
}

}  // namespace qv5123
