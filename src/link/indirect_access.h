#pragma once

#include "link/register_write.h"

/// Most of what the chip is made of lies behind eight of its direct registers: the 12-bit ISP space and the
/// 16-bit sensor space. An access writes the address, high byte first, to one of them and the data to its
/// neighbour. Writing 0xCC to the ISP's 0x922 is "@9209*@9222*@93cc*".
namespace qv5123 {

namespace reg {
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
}  // namespace reg

/// Each one batch. Of an ISP address only the low 12 bits leave where it says so.
Batch isp_write(int address, int value);
Batch isp_read_request(int address);
Batch isp_wide_write(int address, int value);
Batch isp_wide_read_request(int address);
Batch sensor_write(int address, int value);
Batch sensor_read_request(int address);
Batch dump_request(int start, int end);

}  // namespace qv5123
