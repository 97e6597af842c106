#include "console/image_file.h"

#include <cstdint>
#include <system_error>

#include "console/image_blocks.h"

namespace qv5123 {

ReadFile read_image_file(const std::filesystem::path& path) {
  ReadFile file;
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > kImageLimit) {
    file.too_large = path_text(path) + " has " + std::to_string(size) + " bytes. An image has at most " +
                     std::to_string(kImageFits) + " bytes.";
  } else {
    file.result = read_whole_file(path, file.bytes, kImageLimit);
  }
  return file;
}

}  // namespace qv5123
