#include "console/atomic_file.h"

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
  const FileResult missing = write_file_atomically(folder_ / "no" / "such.dat", "x");
  EXPECT_FALSE(missing.ok());
  EXPECT_NE(missing.text.find("such.dat"), std::string::npos);

  fs::create_directories(folder_ / "taken");
  const FileResult directory = write_file_atomically(folder_ / "taken", "x");
  EXPECT_EQ(directory.text, "Cannot write " + path_text(folder_ / "taken") + ": it is a directory");
  EXPECT_TRUE(fs::is_directory(folder_ / "taken"));
  EXPECT_EQ(folder_.size(), 1);
}

TEST_F(AtomicFile, ReadingRefusesWhatIsNoFileOrTooLarge) {
  std::string bytes = "old";
  EXPECT_FALSE(read_whole_file(folder_ / "none.txt", bytes).ok());
  EXPECT_EQ(bytes, "");
  EXPECT_FALSE(read_whole_file(folder_.path(), bytes).ok());
  ASSERT_TRUE(write_file_atomically(folder_ / "five", "12345").ok());
  EXPECT_TRUE(read_whole_file(folder_ / "five", bytes, 5).ok());
  EXPECT_NE(read_whole_file(folder_ / "five", bytes, 4).text.find("larger than 4 bytes"), std::string::npos);
}

}  // namespace
}  // namespace qv5123
