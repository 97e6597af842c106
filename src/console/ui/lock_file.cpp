#include "console/ui/lock_file.h"

#include <QLockFile>

#include "link/ui/qt_text.h"

namespace qv5123 {

std::shared_ptr<void> lock_file(const std::filesystem::path& path) {
  auto lock = std::make_shared<QLockFile>(path_to_qt(path));
  // However old: a program may run for weeks.
  lock->setStaleLockTime(0);
  return lock->tryLock(0) ? lock : nullptr;
}

}  // namespace qv5123
