#include "app/ui/lock_file.h"

#include <QLockFile>
#include <system_error>

#include "base/ui/qt_text.h"

namespace qv5123 {

std::shared_ptr<void> lock_file(const std::filesystem::path& path) {
  // A lock that is there is read, and a pipe in its place would hold that up for good.
  std::error_code error;
  const std::filesystem::file_status there = std::filesystem::symlink_status(path, error);
  if (std::filesystem::exists(there) && !std::filesystem::is_regular_file(there)) return nullptr;
  auto lock = std::make_shared<QLockFile>(path_to_qt(path));
  // However old: a program may run for weeks.
  lock->setStaleLockTime(0);
  return lock->tryLock(0) ? lock : nullptr;
}

}  // namespace qv5123
