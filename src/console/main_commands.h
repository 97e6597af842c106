#pragma once

#include <cstddef>
#include <cstdint>

#include "console/user_data_image.h"
#include "link/register_write.h"

namespace qv5123 {

// What the buttons of the main form send, each one flush.

enum class OsdKey : std::uint8_t { up = 0, down = 1, left = 2, right = 3, set = 4 };

Batch osd_key(OsdKey key);
Batch factory_reset();
/// Sent only after OK to kCopyToFactoryQuestion.
Batch copy_to_factory();
inline constexpr const char* kCopyToFactoryQuestion =
    "would you really want to rewrite factorydata by current userdata?";
/// The chip answers both with text for the console.
Batch ae_info();
Batch awb_info();

/// The selection of the "OSD Pattern Choice" list, kept in the user data.
inline constexpr std::size_t kOsdPatternEntry = 634;
inline constexpr const char* kOsdPatterns[] = {"OSD Pattern 1", "OSD Pattern 2"};
/// Sent after the selection has been stored and the user data file has been written.
Batch osd_pattern(int selection);
/// What the list shows for the image: its selection, or -1 for an entry that the list does not have.
int osd_pattern_selection(const UserDataImage& image);

/// Makes the chip report the ISP tune page's values.
inline constexpr std::uint8_t kIspTuneTrigger = 0xBE;
Batch isp_tune_request();

}  // namespace qv5123
