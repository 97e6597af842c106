#pragma once

#include <cstdint>
#include <string>
#include <vector>

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
inline constexpr std::uint8_t kIspWriteAddress = 0x92;
inline constexpr std::uint8_t kIspWriteData = 0x93;
inline constexpr std::uint8_t kIspReadAddress = 0x94;
inline constexpr std::uint8_t kIspWideWriteAddress = 0x95;
inline constexpr std::uint8_t kIspWideWriteData = 0x96;
inline constexpr std::uint8_t kIspWideReadAddress = 0x97;
inline constexpr std::uint8_t kSensorWriteAddress = 0x98;
inline constexpr std::uint8_t kSensorWriteData = 0x99;
inline constexpr std::uint8_t kSensorReadAddress = 0x9A;
inline constexpr std::uint8_t kDump = 0x9B;
inline constexpr std::uint8_t kAeTask = 0xA0;
inline constexpr std::uint8_t kAwbTask = 0xA1;
/// Brackets a block of settings that the chip is to keep: 1 before, 0 after.
inline constexpr std::uint8_t kKeepBracket = 0xFA;
/// Brackets a whole page's save, outside kKeepBracket.
inline constexpr std::uint8_t kSaveBracket = 0xF9;
}  // namespace reg

/// Indirect accesses to the 12-bit ISP space, the 16-bit sensor space and the dump port, each one batch.
Batch isp_write(int address, int value);
Batch isp_read_request(int address);
Batch isp_wide_write(int address, int value);
Batch isp_wide_read_request(int address);
Batch sensor_write(int address, int value);
Batch sensor_read_request(int address);
Batch dump_request(int start, int end);

/// Value of a hex digit of either case; every other character counts as 0, never an error.
constexpr int hex_value(char32_t c) {
  if (c >= U'0' && c <= U'9') return static_cast<int>(c - U'0');
  if (c >= U'a' && c <= U'f') return static_cast<int>(c - U'a') + 10;
  if (c >= U'A' && c <= U'F') return static_cast<int>(c - U'A') + 10;
  return 0;
}

}  // namespace qv5123
