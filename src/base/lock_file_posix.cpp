#include "base/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace qv5123 {
namespace {

class OpenLock {
 public:
  explicit OpenLock(std::filesystem::path path)
      : path_(std::move(path)),
        // A pipe without another end would hold up an open that waits.
        file_(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600)) {}
  ~OpenLock() {
    if (ours_ && empty()) ::unlink(path_.c_str());
    if (file_ >= 0) ::close(file_);
  }
  OpenLock(const OpenLock&) = delete;
  OpenLock& operator=(const OpenLock&) = delete;

  bool usable() const {
    struct stat status;
    return file_ >= 0 && ::fstat(file_, &status) == 0 && S_ISREG(status.st_mode);
  }
  /// False while somebody else has it. Where the file system knows no locks nobody has, and it must do
  /// without.
  bool lock() {
    ours_ = ::flock(file_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    return ours_;
  }
  /// Whether the file still has its name: who held the lock before may have taken it along meanwhile.
  bool in_place() {
    struct stat own;
    struct stat there;
    const bool same = ::fstat(file_, &own) == 0 && ::stat(path_.c_str(), &there) == 0 &&
                      own.st_ino == there.st_ino && own.st_dev == there.st_dev;
    if (!same) ours_ = false;
    return same;
  }

 private:
  bool empty() const {
    struct stat status;
    return ::fstat(file_, &status) == 0 && status.st_size == 0;
  }

  const std::filesystem::path path_;
  const int file_;
  bool ours_ = false;  // to take along
};

}  // namespace

FileLock lock_file(const std::filesystem::path& path) {
  constexpr int kTries = 100;
  for (int i = 0; i < kTries; ++i) {
    const auto lock = std::make_shared<OpenLock>(path);
    if (!lock->usable()) return {};
    if (!lock->lock()) return {nullptr, true};
    if (lock->in_place()) return {lock};
  }
  return {nullptr, true};
}

}  // namespace qv5123
