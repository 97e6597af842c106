#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "console/user_data_image.h"
#include "link/indirect_access.h"
#include "link/register_write.h"

namespace qv5123 {

// What the buttons of the main form send, each one flush.

enum class OsdKey : std::uint8_t { up = 0, down = 1, left = 2, right = 3, set = 4 };

inline const char* osd_key_name(OsdKey key) {
  constexpr const char* kNames[] = {"Up", "Down", "Left", "Right", "Set"};
  return kNames[static_cast<std::size_t>(key)];
}

inline Batch osd_key(OsdKey key) {
  return {{reg::kOsdKey, static_cast<std::uint8_t>(key)}};
}

inline constexpr int kFactoryResetAddress = 0x922;
inline constexpr int kFactoryResetValue = 0xCC;
inline Batch factory_reset() {
  return isp_write(kFactoryResetAddress, kFactoryResetValue);
}

/// Sent only after OK to kCopyToFactoryQuestion.
inline Batch copy_to_factory() {
  return {{0xBF, 0x00}};
}
inline constexpr const char* kCopyToFactoryQuestion =
    "would you really want to rewrite factorydata by current userdata?";
/// The chip answers both with text for the console.
inline Batch ae_info() {
  return {{0xA2, 0x01}};
}
inline Batch awb_info() {
  return {{0xA5, 0x01}};
}

/// The selection of the "OSD Pattern Choice" list, kept in the user data.
inline constexpr std::size_t kOsdPatternEntry = 634;
inline constexpr const char* kOsdPatterns[] = {"OSD Pattern 1", "OSD Pattern 2"};
/// Sent after the selection has been stored and the user data file has been written.
inline Batch osd_pattern(int selection) {
  return {{0xC9, low_byte(selection)}};
}
/// What the list shows for the image: its selection, or -1 for an entry that the list does not have.
inline int osd_pattern_selection(const UserDataImage& image) {
  const int selection = image.entry(kOsdPatternEntry);
  return selection < static_cast<int>(std::size(kOsdPatterns)) ? selection : -1;
}

}  // namespace qv5123
