#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <deque>
#include <map>

#include "base/mutex.h"
#include "base/scheduler.h"

namespace qv5123 {

/// Flows on the Qt event loop of the thread that creates this. What other threads post is served in slices,
/// so that a flood of it leaves the window its turns.
class QtScheduler final : public QObject, public Scheduler {
 public:
  QtScheduler() { clock_.start(); }

  std::chrono::milliseconds now() const override;
  TimerId call_after(std::chrono::milliseconds delay, Callback callback) override;
  void cancel(TimerId id) override;
  void post(Callback callback) override;

 protected:
  void timerEvent(QTimerEvent* event) override;
  bool event(QEvent* event) override;

 private:
  struct Timer {
    TimerId id;
    Callback callback;
  };
  void serve_posted();
  void request_turn();

  QElapsedTimer clock_;
  TimerId last_id_ = 0;
  std::map<int, Timer> timers_;  // by Qt's id, which Qt gives out again once the timer is over
  std::map<TimerId, int> qt_timers_;
  Mutex mutex_;
  std::deque<Callback> posted_ GUARDED_BY(mutex_);
};

}  // namespace qv5123
