#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

TEST(AtomicFilePosix, AFullDiskLeavesTheOldFileWhole) {
  const test::TemporaryFolder folder;
  ASSERT_TRUE(write_file_atomically(folder / "s.dat", "old").ok());

  // The smallest way to make a write come up short: no file may grow past 100 bytes.
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{100, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const FileResult result = write_file_atomically(folder / "s.dat", std::string(5000, 'n'));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);

  EXPECT_NE(result.text.find("s.dat"), std::string::npos);
  EXPECT_EQ(folder.read("s.dat"), "old");
  EXPECT_EQ(folder.size(), 1);
}

TEST(AtomicFilePosix, KeepsPermissionsAndLinks) {
  const test::TemporaryFolder folder;
  ASSERT_TRUE(write_file_atomically(folder / "real", "1").ok());
  ::chmod((folder / "real").c_str(), 0640);
  fs::create_symlink("real", folder / "link");
  ASSERT_TRUE(write_file_atomically(folder / "link", "2").ok());

  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(fs::status(folder / "real").permissions(), fs::perms(0640));
  EXPECT_EQ(folder.read("real"), "2");
}

TEST(AtomicFilePosix, ALinkToNoFileIsRefusedAndStays) {
  const test::TemporaryFolder folder;
  fs::create_symlink("gone.dat", folder / "link.dat");
  const FileResult result = write_file_atomically(folder / "link.dat", "2");
  EXPECT_EQ(result.text, "Cannot write " + path_text(folder / "link.dat") + ": it is a link to no file");
  EXPECT_TRUE(fs::is_symlink(folder / "link.dat"));
  EXPECT_EQ(folder.size(), 1);
}

TEST(AtomicFilePosix, APipeInAFilesPlaceHoldsNothingUp) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  std::string bytes(1, ' ');
  EXPECT_EQ(detail::fill_from_file(folder / "pipe", bytes), "it is not a regular file");
}

TEST(AtomicFilePosix, AWriteProtectedFileStays) {
  const test::TemporaryFolder folder;
  ::chmod(folder.path().c_str(), 0777);
  ::chmod(folder.write("s.dat", "old").c_str(), 0444);
  const uid_t self = ::geteuid();
  ASSERT_EQ(::seteuid(self == 0 ? 65534 : self), 0) << "nothing is protected from root";
  const FileResult result = write_file_atomically(folder / "s.dat", "new");
  ASSERT_EQ(::seteuid(self), 0);
  EXPECT_FALSE(result.ok());
  EXPECT_EQ(folder.read("s.dat"), "old");
}

}  // namespace
}  // namespace qv5123
