#pragma once

#include <filesystem>
#include <string>

#include "base/atomic_file.h"

namespace qv5123 {

/// An image file, or why there is none.
struct ReadFile {
  std::string bytes;
  FileResult result;
  std::string too_large;
};

/// Reads a file of at most kImageLimit bytes.
ReadFile read_image_file(const std::filesystem::path& path);

}  // namespace qv5123
