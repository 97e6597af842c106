#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "link/serial_device.h"

namespace qv5123 {

// Bits of LineSettings::flow_flags.
inline constexpr std::uint32_t kFlowDtrDsr = 1;
inline constexpr std::uint32_t kFlowRtsCts = 2;
inline constexpr std::uint32_t kFlowXonXoff = 4;

inline constexpr std::uint8_t kXon = 0x11;
inline constexpr std::uint8_t kXoff = 0x13;

/// What is wrong with `settings`, in words; empty when they stand for a line that can exist.
std::string settings_fault(const LineSettings& settings);

/// How long a line so set takes for `bytes` bytes, start, parity and stop bits included; 0 at baud rate 0.
std::chrono::nanoseconds line_time(std::size_t bytes, const LineSettings& settings);

}  // namespace qv5123
