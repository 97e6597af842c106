#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>

#include "simulator/faults.h"

namespace qv5123 {

/// Lets the bytes of a queue through as a serial line would: one after the other, 10 bits each. Being asked
/// late does not slow the line down, and a silent line saves nothing up.
class LinePacer {
 public:
  /// `baud` 0: no limit.
  explicit LinePacer(unsigned baud) : byte_time_(baud == 0 ? 0 : 10'000'000'000 / baud) {}

  /// How many of the `waiting` bytes have come through by `now`; the caller takes them off the queue.
  std::size_t pass(std::size_t waiting, TimePoint now) {
    if (byte_time_.count() == 0) return waiting;
    if (!busy_) line_time_ = std::max(line_time_, now);
    const auto elapsed = std::max(now - line_time_, TimePoint::duration::zero());
    const std::size_t passed = std::min(waiting, static_cast<std::size_t>(elapsed / byte_time_));
    line_time_ += byte_time_ * passed;
    busy_ = waiting > passed;
    return passed;
  }

  /// When it is worth asking again with `waiting` bytes left: after about 2 ms of bytes, or all of them.
  std::optional<TimePoint> next(std::size_t waiting) const {
    if (waiting == 0 || byte_time_.count() == 0) return std::nullopt;
    const auto batch =
        std::max<std::size_t>(1, std::chrono::nanoseconds(std::chrono::milliseconds(2)) / byte_time_);
    return line_time_ + byte_time_ * std::min(waiting, batch);
  }

  std::chrono::nanoseconds byte_time() const { return byte_time_; }

 private:
  std::chrono::nanoseconds byte_time_;
  TimePoint line_time_{};  ///< until when the line has been used
  bool busy_ = false;
};

}  // namespace qv5123
