#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "link/register_write.h"

namespace qv5123 {

/// Where register-write frames are gathered until they leave in one write. Every write of the port resets
/// the fill index, whatever it sent, so that the next batch starts empty.
class CommandBuffer {
 public:
  /// A little over 64 KiB: room for more than ten thousand frames, where the largest batch has a few hundred.
  static constexpr std::size_t kCapacity = 65536 + 64;

  CommandBuffer() { bytes_.reserve(kCapacity); }

  /// Appends one frame of six bytes. False, and nothing appended, when it no longer fits.
  bool append_register_write(std::uint8_t address, std::uint8_t value) {
    const std::string text = frame({address, value});
    if (bytes_.size() + text.size() > kCapacity) return false;
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return true;
  }

  void clear() { bytes_.clear(); }
  std::span<const std::uint8_t> bytes() const { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace qv5123
