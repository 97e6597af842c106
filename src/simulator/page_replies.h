#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "simulator/chip_state.h"

namespace qv5123 {

/// Builds the hex text of a reply block, without the "~" and "^" around it.
using ReplyBuilder = std::function<std::string(const ChipState&)>;
/// What the chip answers when one of these registers is written.
using ReplyTable = std::map<std::uint8_t, ReplyBuilder>;

/// The answers to the tuning pages' triggers 0x07, 0x36, 0x69, 0x6A, 0x6B and 0xBE. They are put together
/// from the user data entry by entry, not with the pages' own layouts, so that the two check each other.
ReplyTable page_replies();

}  // namespace qv5123
