#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What the chip understands is writes of a byte to one of 256 registers. On the wire each is a frame of six
/// characters: "@", two lower-case hex digits of the address, two of the value, "*". Register 0x2F = 1 is
///
///     40 32 66 30 31 2a    "@2f01*"
///
/// Frames follow each other without anything between them; a command letter ('A', 'C', 'U') between two
/// frames begins a transfer of blocks instead. A quantity of 16 bits is two writes to the same register, the
/// high byte first: "@0d01*@0d90*" is 400.
namespace qv5123 {

/// One write of a byte to one of the chip's 256 direct registers.
struct RegisterWrite {
  std::uint8_t address = 0;
  std::uint8_t value = 0;
  friend bool operator==(const RegisterWrite&, const RegisterWrite&) = default;
};

/// Register writes that leave in one flush: they reach the chip back to back, after one pacing delay.
using Batch = std::vector<RegisterWrite>;

/// Flushes in the order in which they leave, each with a pacing delay of its own.
using Traffic = std::vector<Batch>;

/// High byte of a 16-bit quantity. Takes int so that signed values split as two's complement.
constexpr std::uint8_t high_byte(int value) {
  return static_cast<std::uint8_t>((value >> 8) & 0xFF);
}
/// Low byte of a 16-bit quantity.
constexpr std::uint8_t low_byte(int value) {
  return static_cast<std::uint8_t>(value & 0xFF);
}

/// A 16-bit quantity sent through one register: high byte first, the chip latches the pair.
Batch word_write(std::uint8_t address, int value);

/// Each write of `writes` as a flush of its own.
Traffic flushed_singly(const Batch& writes);

/// Appends `more` to `traffic`.
void append(Traffic& traffic, Traffic more);
/// Appends one flush that holds just one write.
void append(Traffic& traffic, RegisterWrite write);

/// The frame of a register write: "@", two lowercase hex digits of the address, two of the value, "*".
std::string frame(RegisterWrite write);
/// The frames of a batch, without separators.
std::string frames(const Batch& batch);

/// Registers with a meaning to more than one page.
namespace reg {
inline constexpr std::uint8_t kOsdKey = 0x01;
inline constexpr std::uint8_t kAeTask = 0xA0;
inline constexpr std::uint8_t kAwbTask = 0xA1;
/// Brackets a block of settings that the chip is to keep: 1 before, 0 after.
inline constexpr std::uint8_t kKeepBracket = 0xFA;
/// Brackets a whole page's save, outside kKeepBracket.
inline constexpr std::uint8_t kSaveBracket = 0xF9;
}  // namespace reg

}  // namespace qv5123
