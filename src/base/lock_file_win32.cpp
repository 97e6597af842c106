#include <windows.h>

#include <utility>

#include "base/lock_file.h"

namespace qv5123 {
namespace {

class OpenLock {
 public:
  explicit OpenLock(std::filesystem::path path)
      : path_(std::move(path)),
        file_(CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  ~OpenLock() {
    if (!held()) return;
    LARGE_INTEGER size{};
    const bool empty = GetFileSizeEx(file_, &size) && size.QuadPart == 0;
    CloseHandle(file_);
    // Fails while the next one has it open, whose it is then to remove.
    if (empty) DeleteFileW(path_.c_str());
  }
  OpenLock(const OpenLock&) = delete;
  OpenLock& operator=(const OpenLock&) = delete;

  bool held() const { return file_ != INVALID_HANDLE_VALUE; }

 private:
  const std::filesystem::path path_;
  const HANDLE file_;
};

}  // namespace

FileLock lock_file(const std::filesystem::path& path) {
  const auto lock = std::make_shared<OpenLock>(path);
  const bool busy = !lock->held() && GetLastError() == ERROR_SHARING_VIOLATION;
  if (!lock->held()) return {nullptr, busy};
  return {lock};
}

}  // namespace qv5123
