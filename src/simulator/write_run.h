#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "link/register_write.h"

namespace qv5123 {

/// Consecutive writes to one register. Values wider than a byte, and groups of bytes that belong together,
/// come as such a run; a write to another register ends it, so a lost byte spoils one group and no more.
class WriteRun {
 public:
  void note(RegisterWrite write) {
    if (write.address != address_) count_ = 0;
    address_ = write.address;
    last_[count_ % last_.size()] = write.value;
    ++count_;
  }
  void reset() { count_ = 0; }

  std::uint8_t address() const { return address_; }
  /// Writes in the run so far, this one included.
  std::size_t count() const { return count_; }
  /// True when the run has just filled a group of `size` writes.
  bool completes(std::size_t size) const { return count_ > 0 && count_ % size == 0; }
  /// The value written `back` writes ago, 0 being the latest and 3 the farthest that is kept.
  std::uint8_t value(std::size_t back) const {
    return back < count_ ? last_[(count_ - 1 - back) % last_.size()] : 0;
  }
  /// The two values that end `back` writes ago, high byte first.
  std::uint16_t word(std::size_t back = 0) const {
    return static_cast<std::uint16_t>(value(back + 1) << 8 | value(back));
  }

 private:
  std::uint8_t address_ = 0;
  std::size_t count_ = 0;
  std::array<std::uint8_t, 4> last_{};
};

}  // namespace qv5123
