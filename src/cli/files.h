#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "console/user_data_image.h"

namespace qv5123 {

// Files of the command line. What cannot be read or written is a Complaint that names it.

std::string read_file(const std::filesystem::path& path, std::uintmax_t limit = std::uintmax_t{64} << 20);
/// The old file stays whole if it cannot be replaced.
void write_file(const std::filesystem::path& path, std::string_view bytes);
/// Whether a setting file's text has any number. Reading makes an image of zeros of one that has none.
bool holds_settings(std::string_view text);
/// A file without any number is none.
UserDataImage read_settings(const std::filesystem::path& path);

}  // namespace qv5123
