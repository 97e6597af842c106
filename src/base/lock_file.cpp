#include "base/lock_file.h"

#include <system_error>
#include <thread>

namespace qv5123 {

FileLock lock_beside(const std::filesystem::path& file, std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kLook{10};
  std::error_code error;
  // Whatever links lead to it, a file has one lock.
  std::filesystem::path path = std::filesystem::weakly_canonical(file, error);
  if (error) path = file;
  path += ".qv5123-lock";
  FileLock lock = lock_file(path);
  for (auto waited = kLook; lock.busy && waited <= patience; waited += kLook) {
    std::this_thread::sleep_for(kLook);
    lock = lock_file(path);
  }
  return lock;
}

}  // namespace qv5123
