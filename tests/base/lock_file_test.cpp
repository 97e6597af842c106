#include "base/lock_file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

TEST(LockFile, IsHeldOnceAndItsFileGoesWithItAndBesideAFileItIsOneForAllItsNames) {
  const test::TemporaryFolder folder;
  FileLock lock = lock_file(folder / "l");
  ASSERT_TRUE(lock.held);
  const FileLock second = lock_file(folder / "l");
  EXPECT_FALSE(second.held);
  EXPECT_TRUE(second.busy);
  lock.held.reset();
  EXPECT_EQ(folder.size(), 0);
  EXPECT_TRUE(lock_file(folder / "l").held);
  EXPECT_FALSE(lock_file(folder / "no folder" / "l").busy);
  // One that was left counts for nothing and keeps what others wrote.
  for (const char* left : {"", "4711\nQV5123\nother host\n\nanother boot\n"}) {
    folder.write("l", left);
    EXPECT_TRUE(lock_file(folder / "l").held) << left;
  }
  EXPECT_EQ(folder.size(), 1);

  const auto file = folder.write("a.dat", "");
  lock = lock_beside(file, {});
  ASSERT_TRUE(lock.held);
  EXPECT_TRUE(lock_beside(folder / "." / "a.dat", std::chrono::milliseconds(20)).busy);
  lock.held.reset();
  EXPECT_TRUE(lock_beside(file, {}).held);
  EXPECT_EQ(folder.size(), 2);
}

}  // namespace
}  // namespace qv5123
