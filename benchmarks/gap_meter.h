#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>

namespace qv5123 {

/// The longest time, in milliseconds, for which the event loop did not come round to a timer of 1 ms.
class GapMeter {
 public:
  GapMeter() {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
      const double now = static_cast<double>(clock_.nsecsElapsed()) / 1e6;
      worst_ = std::max(worst_, now - last_);
      last_ = now;
    });
  }
  void start() {
    clock_.start();
    last_ = worst_ = 0;
    timer_.start(1);
  }
  double worst() const { return worst_; }

 private:
  QTimer timer_;
  QElapsedTimer clock_;
  double last_ = 0;
  double worst_ = 0;
};

}  // namespace qv5123
