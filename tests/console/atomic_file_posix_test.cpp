#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include <gtest/gtest.h>

#include "console/atomic_file.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

TEST(AtomicFilePosix, AFullDiskLeavesTheOldFileWhole) {
  const fs::path folder =
      fs::temp_directory_path() / ("qv5123_full_" + std::to_string(detail::process_number()));
  fs::create_directories(folder);
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
  std::string bytes;
  EXPECT_TRUE(read_whole_file(folder / "s.dat", bytes).ok());
  EXPECT_EQ(bytes, "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
  fs::remove_all(folder);
}

TEST(AtomicFilePosix, KeepsPermissionsAndLinks) {
  const fs::path folder =
      fs::temp_directory_path() / ("qv5123_link_" + std::to_string(detail::process_number()));
  fs::create_directories(folder);
  ASSERT_TRUE(write_file_atomically(folder / "real", "1").ok());
  ::chmod((folder / "real").c_str(), 0640);
  fs::create_symlink("real", folder / "link");
  ASSERT_TRUE(write_file_atomically(folder / "link", "2").ok());

  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(fs::status(folder / "real").permissions(), fs::perms(0640));
  std::string bytes;
  EXPECT_TRUE(read_whole_file(folder / "real", bytes).ok());
  EXPECT_EQ(bytes, "2");
  fs::remove_all(folder);
}

}  // namespace
}  // namespace qv5123
