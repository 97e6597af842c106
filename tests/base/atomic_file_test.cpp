#include "base/atomic_file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

class AtomicFile : public testing::Test {
 protected:
  const test::TemporaryFolder folder_;
};

TEST_F(AtomicFile, ReplacesTheWholeContentByteForByte) {
  const fs::path path = folder_ / fs::path(u8"Einstellung ä.dat");
  std::string bytes;
  for (const std::string& content : {std::string(70000, 'x'), std::string("a\r\n\0b\n", 6)}) {
    EXPECT_TRUE(write_file_atomically(path, content).ok());
    EXPECT_TRUE(read_whole_file(path, bytes).ok());
    EXPECT_EQ(bytes, content);
  }
  EXPECT_EQ(folder_.size(), 1) << "no temporary may stay behind";
}

TEST_F(AtomicFile, FailureNamesTheFileAndLeavesNothingBehind) {
  fs::create_directories(folder_ / "taken");
  const FileResult directory = write_file_atomically(folder_ / "taken", "x");
  EXPECT_EQ(directory.text, "Cannot write " + path_text(folder_ / "taken") + ": it is a directory");
  EXPECT_TRUE(fs::is_directory(folder_ / "taken"));
  EXPECT_EQ(folder_.size(), 1);
}

}  // namespace
}  // namespace qv5123
