#pragma once

#include <filesystem>
#include <memory>

namespace qv5123 {

/// Holds `path` as a lock until the last copy of what is returned goes; null while another living process
/// holds it, or where it cannot be made. The lock of a process that died counts for nothing.
std::shared_ptr<void> lock_file(const std::filesystem::path& path);

}  // namespace qv5123
