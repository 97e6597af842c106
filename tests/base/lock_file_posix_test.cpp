#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "base/lock_file.h"
#include "support/temporary_folder.h"

namespace {

/// What asking for a lock fails with; 0 leaves it to the system.
int lock_error = 0;

}  // namespace

/// In the place of the system library's.
extern "C" int flock(int file, int operation) noexcept {
  if (lock_error == 0) return static_cast<int>(::syscall(SYS_flock, file, operation));
  errno = lock_error;
  return -1;
}

namespace qv5123 {
namespace {

TEST(LockFilePosix, OnAFileSystemWithoutLocksCanBeUsedAndIsNotTakenForAnothers) {
  const test::TemporaryFolder folder;
  for (const int error : {ENOLCK, ENOSYS}) {
    lock_error = error;
    const FileLock lock = lock_file(folder / "l");
    lock_error = 0;
    EXPECT_TRUE(lock.held && !lock.busy);
  }
  EXPECT_EQ(folder.size(), 0) << "it goes all the same";
}

}  // namespace
}  // namespace qv5123
