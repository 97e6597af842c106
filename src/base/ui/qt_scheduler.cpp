#include "base/ui/qt_scheduler.h"

#include <QCoreApplication>
#include <QTimerEvent>
#include <utility>

namespace qv5123 {
namespace {

const QEvent::Type kPosted = static_cast<QEvent::Type>(QEvent::registerEventType());
/// A third of a frame: what is posted shares the turn with what it makes the window paint.
constexpr qint64 kSliceMs = 5;

}  // namespace

std::chrono::milliseconds QtScheduler::now() const {
  return std::chrono::milliseconds(clock_.elapsed());
}

Scheduler::TimerId QtScheduler::call_after(std::chrono::milliseconds delay, Callback callback) {
  const TimerId id = ++last_id_;
  const int qt_id = startTimer(delay, Qt::PreciseTimer);
  timers_.emplace(qt_id, Timer{id, std::move(callback)});
  qt_timers_.emplace(id, qt_id);
  return id;
}

void QtScheduler::cancel(TimerId id) {
  const auto found = qt_timers_.find(id);
  if (found == qt_timers_.end()) return;
  killTimer(found->second);
  timers_.erase(found->second);
  qt_timers_.erase(found);
}

void QtScheduler::timerEvent(QTimerEvent* event) {
  const auto found = timers_.find(event->timerId());
  if (found == timers_.end()) return;
  const Timer timer = std::move(found->second);
  killTimer(found->first);
  timers_.erase(found);
  qt_timers_.erase(timer.id);
  timer.callback();
}

void QtScheduler::post(Callback callback) {
  bool first = false;
  {
    const MutexLock lock(mutex_);
    first = posted_.empty();
    posted_.push_back(std::move(callback));
  }
  if (first) request_turn();
}

void QtScheduler::request_turn() {
  QCoreApplication::postEvent(this, new QEvent(kPosted), Qt::LowEventPriority);
}

bool QtScheduler::event(QEvent* event) {
  if (event->type() != kPosted) return QObject::event(event);
  serve_posted();
  return true;
}

void QtScheduler::serve_posted() {
  QElapsedTimer slice;
  slice.start();
  const MutexLock lock(mutex_);
  while (!posted_.empty()) {
    if (slice.elapsed() >= kSliceMs) {
      request_turn();
      return;
    }
    // Its place stays taken while it runs, so that what it posts asks for no turn of its own. It ends before
    // the lock is taken again: what it holds may post when it goes.
    Callback callback = std::move(posted_.front());
    {
      const MutexUnlock unlocked(mutex_);
      callback();
      callback = nullptr;
    }
    posted_.pop_front();
  }
}

}  // namespace qv5123
