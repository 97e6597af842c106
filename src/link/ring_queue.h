#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace qv5123 {

/// The receive queue between the port's watcher thread (the one producer) and the thread that decodes (the
/// one consumer). 8192 slots, of which one always stays empty: 8191 bytes fit. No lock: each index is
/// written by one side only.
class RingQueue {
 public:
  static constexpr std::size_t kSlots = 8192;

  std::size_t count() const {
    return (put_.load(std::memory_order_acquire) + kSlots - get_.load(std::memory_order_acquire)) % kSlots;
  }
  /// False, and nothing stored, when 8191 bytes are waiting. Producer only.
  bool put(std::uint8_t byte);
  /// False when nothing is waiting. Consumer only.
  bool get(std::uint8_t& byte);
  /// Empties and zeroes the queue. Only while neither side is at work.
  void clear();

 private:
  std::array<std::uint8_t, kSlots> bytes_{};
  std::atomic<std::size_t> put_{0};
  std::atomic<std::size_t> get_{0};
};

}  // namespace qv5123
