#pragma once

#include <cstdint>
#include <string>

#include "simulator/chip_state.h"

/// What the simulated chip prints on its console.
namespace qv5123 {

/// The lines printed at start: name, the three versions, video mode.
std::string boot_banner(const ChipState& chip);

/// The version reply: the 18 version digits of hardware, software and ISP, then 9 characters of the serial
/// number, two hex digits each.
std::string version_reply(const ChipState& chip);

/// One line "0xF922 = 0x12" per ISP register from `start` to `end`, both 12-bit; a line that says so when
/// `end` lies before `start`.
std::string dump_text(const ChipState& chip, std::uint16_t start, std::uint16_t end);

/// The state of auto exposure and auto white balance, several lines each.
std::string ae_info_text(const ChipState& chip);
std::string awb_info_text(const ChipState& chip);
/// The same in numbers, two hex digits to a byte. AE: task, target, luma, speed, the three gain thresholds.
/// AWB: task, light source, R weight and B weight (two bytes each, signed).
std::string ae_info_reply(const ChipState& chip);
std::string awb_info_reply(const ChipState& chip);

}  // namespace qv5123
