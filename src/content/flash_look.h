#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "content/flash_image.h"

namespace qv5123 {

/// A part of the flash, as the chosen files would fill it.
struct FlashPlace {
  std::size_t offset = 0;
  std::size_t size = 0;    ///< bytes that there are
  std::size_t filled = 0;  ///< of them by the file; 0 where it stays erased
  std::string text;        ///< "firmware: fw.bin, 45056 of 65536 bytes, "FW V1.2", CRC-32 1A2B3C4D"
};

/// What an image of these files would hold, in the order of its bytes, before it is made.
struct FlashLook {
  std::vector<FlashPlace> places;
  /// What is wrong with files that were chosen, a line each.
  std::vector<std::string> remarks;
};

/// Reads the files; a path may be empty. May be slow.
FlashLook look_at_flash(const FlashFiles& files);

/// Which file somebody means who drops this one on the page: a setting file is the user data, and of the
/// others a font is told by its size or its name.
enum class FlashFile { firmware, font, user };
FlashFile flash_file_kind(const std::filesystem::path& path);

}  // namespace qv5123
