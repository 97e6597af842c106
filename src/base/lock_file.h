#pragma once

#include <chrono>
#include <filesystem>
#include <memory>

namespace qv5123 {

/// A lock of this process, or why there is none.
struct FileLock {
  std::shared_ptr<void> held;  ///< given back when the last copy goes, at the process's end at the latest
  bool busy = false;           ///< somebody else holds it
};

/// Locks through the file `path`, which is made where it is missing. The system itself keeps the lock, so
/// that whatever a process that died left in the file counts for nothing. Waits for nobody. A lock that is
/// given back takes its file along, unless the file holds something that others wrote. On a file system that
/// knows no locks it holds nobody off.
FileLock lock_file(const std::filesystem::path& path);

/// Locks the file against other programs of ours through a file beside it, and waits up to `patience` for one
/// that holds it. Not for the user interface's thread.
FileLock lock_beside(const std::filesystem::path& file, std::chrono::milliseconds patience);

}  // namespace qv5123
