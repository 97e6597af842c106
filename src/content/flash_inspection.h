#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

/// A part of a flash image.
struct FlashRegion {
  std::string name;
  std::size_t offset = 0;
  std::size_t size = 0;
  std::size_t used = 0;     ///< up to the last byte that is not erased
  std::uint32_t crc32 = 0;  ///< of the used bytes, as ISO 3309 has it
};

/// What a flash image holds.
struct FlashInspection {
  std::vector<FlashRegion> regions;
  /// The regions that an image must have and of which nothing is written: firmware, font, user data.
  std::vector<std::string> erased;
  bool firmware_copies_agree = false;
  bool user_copies_agree = false;
};

/// Looks into an image of flash::kImageSize bytes.
FlashInspection inspect_flash_image(std::string_view image);

}  // namespace qv5123
