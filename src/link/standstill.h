#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

namespace qv5123 {

/// Notices a line that takes no bytes. Counts the bytes that leave, not the time of a write: a slow adapter
/// is no standstill. For the thread that writes.
class Standstill {
 public:
  using Time = std::chrono::steady_clock::time_point;
  /// From the last byte that left to when it is said.
  static constexpr std::chrono::milliseconds kSaidAfter{5000};
  /// The same to when a write ends that is cancelled; one that moves ends with its last byte.
  static constexpr std::chrono::milliseconds kCancelledAfter{300};

  /// A write begins.
  void begin(Time now) {
    since_ = now;
    sent_ = 0;
  }
  /// So many bytes of it have left by now. Returns whether it should go on.
  bool goes_on(std::size_t sent, Time now, bool cancelled) {
    if (sent != sent_) since_ = now;
    sent_ = sent;
    return !cancelled || now - since_ < kCancelledAfter;
  }
  /// The news, once each: true that the line stands still, false that it takes bytes again.
  std::optional<bool> news(Time now) {
    const bool stands = now - since_ >= kSaidAfter;
    if (stands == said_ || (!stands && sent_ == 0)) return std::nullopt;
    said_ = stands;
    return stands;
  }

 private:
  Time since_;
  std::size_t sent_ = 0;
  bool said_ = false;
};

}  // namespace qv5123
