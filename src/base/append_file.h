#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace qv5123 {

/// Appends `line` and a line end to the file, which is made where it is missing, and returns once both are on
/// the disk. What an earlier writer that died left of a line is taken away first; a line that does not fit is
/// taken back. Who may append at the same time holds a lock, see lock_beside(). The error is in words, empty
/// on success.
std::string append_line(const std::filesystem::path& path, std::string_view line);

}  // namespace qv5123
