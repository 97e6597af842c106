#include "console/atomic_file.h"

#include <gtest/gtest.h>

#include <fstream>

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

class AtomicFile : public testing::Test {
 protected:
  AtomicFile() { fs::create_directories(folder_); }
  ~AtomicFile() override { fs::remove_all(folder_); }

  static std::string content(const fs::path& path) {
    std::string bytes;
    EXPECT_EQ(read_whole_file(path, bytes).text, "");
    return bytes;
  }
  std::ptrdiff_t files() const { return std::distance(fs::directory_iterator(folder_), {}); }

  const fs::path folder_ =
      fs::temp_directory_path() / ("qv5123_atomic_file_" + std::to_string(detail::process_number()));
};

TEST_F(AtomicFile, ReplacesTheWholeContentByteForByte) {
  const fs::path path = folder_ / fs::path(u8"Einstellung ä.dat");
  EXPECT_TRUE(write_file_atomically(path, std::string(70000, 'x')).ok());
  EXPECT_EQ(content(path).size(), 70000u);
  EXPECT_TRUE(write_file_atomically(path, std::string_view("a\r\n\0b\n", 6)).ok());
  EXPECT_EQ(content(path), std::string("a\r\n\0b\n", 6));
  EXPECT_EQ(files(), 1) << "no temporary may stay behind";
}

TEST_F(AtomicFile, FailureNamesTheFileAndLeavesNothingBehind) {
  const FileResult missing = write_file_atomically(folder_ / "no" / "such.dat", "x");
  EXPECT_FALSE(missing.ok());
  EXPECT_NE(missing.text.find("such.dat"), std::string::npos);

  fs::create_directories(folder_ / "taken");
  const FileResult directory = write_file_atomically(folder_ / "taken", "x");
  EXPECT_EQ(directory.text, "Cannot write " + path_text(folder_ / "taken") + ": it is a directory");
  EXPECT_TRUE(fs::is_directory(folder_ / "taken"));
  EXPECT_EQ(files(), 1);
}

TEST_F(AtomicFile, ReadingRefusesWhatIsNoFileOrTooLarge) {
  std::string bytes = "old";
  EXPECT_FALSE(read_whole_file(folder_ / "none.txt", bytes).ok());
  EXPECT_EQ(bytes, "");
  EXPECT_FALSE(read_whole_file(folder_, bytes).ok());
  ASSERT_TRUE(write_file_atomically(folder_ / "five", "12345").ok());
  EXPECT_TRUE(read_whole_file(folder_ / "five", bytes, 5).ok());
  EXPECT_NE(read_whole_file(folder_ / "five", bytes, 4).text.find("larger than 4 bytes"), std::string::npos);
}

}  // namespace
}  // namespace qv5123
