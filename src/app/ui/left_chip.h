#pragma once

namespace qv5123 {

/// What is said where a page's color picker was on as the chip was left.
inline constexpr const char* kPickerLeftOff = "The color picker was switched off: AE and AWB run again.";

}  // namespace qv5123
