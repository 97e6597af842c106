#include "link/background.h"

namespace qv5123 {

WorkerThread::WorkerThread(Scheduler& scheduler) : scheduler_(scheduler), thread_([this] { serve(); }) {}

WorkerThread::~WorkerThread() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void WorkerThread::start(std::function<Finish()> work) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(work));
  }
  changed_.notify_one();
}

void WorkerThread::serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
    if (waiting_.empty()) return;
    std::function<Finish()> work = std::move(waiting_.front());
    waiting_.pop_front();
    lock.unlock();
    Finish finish = work();
    // What the work holds goes before anybody is told that it is over.
    work = nullptr;
    scheduler_.post(std::move(finish));
    lock.lock();
  }
}

}  // namespace qv5123
