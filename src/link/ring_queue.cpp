#include "link/ring_queue.h"

namespace qv5123 {

bool RingQueue::put(std::uint8_t byte) {
  if (count() == kSlots - 1) return false;
  const std::size_t at = put_.load(std::memory_order_relaxed);
  bytes_[at] = byte;
  put_.store((at + 1) % kSlots, std::memory_order_release);
  return true;
}

bool RingQueue::get(std::uint8_t& byte) {
  if (count() == 0) return false;
  const std::size_t at = get_.load(std::memory_order_relaxed);
  byte = bytes_[at];
  get_.store((at + 1) % kSlots, std::memory_order_release);
  return true;
}

void RingQueue::clear() {
  bytes_.fill(0);
  put_ = 0;
  get_ = 0;
}

}  // namespace qv5123
