#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "link/sender.h"
#include "registers/reg_description.h"

namespace qv5123 {

/// The chip's flash copy of the registers 0xF800..0xFFFF: their values, and a mask of those that are valid.
/// What was marked once stays marked; only a new image is empty.
class KeptRegisters {
 public:
  static constexpr int kFirstAddress = 0xF800;
  static constexpr std::size_t kSize = 2048;
  static constexpr std::size_t kBlock = 256;
  /// The first and the last port of a transfer: a block's number comes before its data, its end behind.
  static constexpr std::uint8_t kBlockNumber = 0xDC;
  static constexpr std::uint8_t kEndOfBlock = 0xE0;

  /// Takes the registers that are marked as saved. One that was never read is stored as 0xFF, unmarked.
  void collect(const RegDescription& description);

  const std::array<std::uint8_t, kSize>& bytes() const { return bytes_; }
  /// Bit (A - 0xF800) mod 8 of byte (A - 0xF800) / 8 stands for address A.
  const std::array<std::uint8_t, kSize / 8>& mask() const { return mask_; }

  /// The transfer: the mask, then the eight blocks, each after a pause of 50 ms for the chip to program it.
  Job transfer() const;

 private:
  std::array<std::uint8_t, kSize> bytes_{};
  std::array<std::uint8_t, kSize / 8> mask_{};
};

}  // namespace qv5123
