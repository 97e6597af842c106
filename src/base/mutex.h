#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

// What belongs to which mutex stands beside it, and clang refuses what touches it without: a member is
// GUARDED_BY its mutex, and a function that is called with the mutex held REQUIRES it. Other compilers see
// none of this.
//
//   Mutex mutex_;
//   Condition changed_;
//   int room_ GUARDED_BY(mutex_) = 0;
//   void fill() REQUIRES(mutex_);
//   ...
//   const MutexLock lock(mutex_);
//   changed_.wait(mutex_, [this]() REQUIRES(mutex_) { return room_ > 0; });
#ifdef __clang__
#define QV_THREAD_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define QV_THREAD_ATTRIBUTE(attribute)
#endif
#define GUARDED_BY(mutex) QV_THREAD_ATTRIBUTE(guarded_by(mutex))
#define REQUIRES(mutex) QV_THREAD_ATTRIBUTE(requires_capability(mutex))
#define ACQUIRE(...) QV_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) QV_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))

namespace qv5123 {

class QV_THREAD_ATTRIBUTE(capability("mutex")) Mutex {
 public:
  void lock() ACQUIRE() { mutex_.lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }

 private:
  friend class Condition;
  std::mutex mutex_;
};

/// Holds the mutex for as long as it lives.
class QV_THREAD_ATTRIBUTE(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() RELEASE() { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

/// Gives up a mutex that is held, and takes it again at its end.
class QV_THREAD_ATTRIBUTE(scoped_lockable) MutexUnlock {
 public:
  explicit MutexUnlock(Mutex& mutex) RELEASE(mutex) : mutex_(mutex) { mutex_.unlock(); }
  ~MutexUnlock() RELEASE() { mutex_.lock(); }
  MutexUnlock(const MutexUnlock&) = delete;
  MutexUnlock& operator=(const MutexUnlock&) = delete;

 private:
  Mutex& mutex_;
};

/// What threads that hold a mutex wait for. The mutex is free while they wait. A wait without a predicate may
/// end for no reason.
class Condition {
 public:
  void notify_one() { condition_.notify_one(); }
  void notify_all() { condition_.notify_all(); }

  void wait(Mutex& mutex) REQUIRES(mutex) {
    Held held(mutex);
    condition_.wait(held.lock);
  }
  template <class Predicate>
  void wait(Mutex& mutex, Predicate predicate) REQUIRES(mutex) {
    Held held(mutex);
    condition_.wait(held.lock, std::move(predicate));
  }
  template <class Time>
  void wait_until(Mutex& mutex, const Time& end) REQUIRES(mutex) {
    Held held(mutex);
    condition_.wait_until(held.lock, end);
  }
  /// What the predicate says at the end.
  template <class Time, class Predicate>
  bool wait_until(Mutex& mutex, const Time& end, Predicate predicate) REQUIRES(mutex) {
    Held held(mutex);
    return condition_.wait_until(held.lock, end, std::move(predicate));
  }
  template <class Predicate>
  bool wait_for(Mutex& mutex, std::chrono::milliseconds time, Predicate predicate) REQUIRES(mutex) {
    Held held(mutex);
    return condition_.wait_for(held.lock, time, std::move(predicate));
  }

 private:
  /// A mutex that is held, as the standard library wants it, and is held afterwards.
  struct Held {
    explicit Held(Mutex& mutex) : lock(mutex.mutex_, std::adopt_lock) {}
    ~Held() { lock.release(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    std::unique_lock<std::mutex> lock;
  };

  std::condition_variable condition_;
};

}  // namespace qv5123
