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

TEST_F(AtomicFile, TemporariesTouchNothingThatWasThere) {
  const std::string start = "s.dat.qv5123-" + std::to_string(detail::process_number()) + "-";
  // The numbers go on from whatever was written before, so they are taken until a write finds none free.
  constexpr int kStep = 150;
  int taken = 0;
  std::string refused;
  while (refused.empty() && taken < 1000 * kStep) {
    for (const int last = taken + kStep; taken < last;)
      folder_.write(start + std::to_string(++taken) + ".tmp", "user's");
    refused = write_file_atomically(folder_ / "s.dat", "old").text;
  }
  EXPECT_NE(refused, "");
  EXPECT_EQ(write_file_atomically(folder_ / "s.dat", "new").text, "") << "by the next free one";
  EXPECT_EQ(folder_.read("s.dat"), "new");
  EXPECT_EQ(folder_.size(), taken + 1);
  for (int serial = 1; serial <= taken; ++serial)
    ASSERT_EQ(folder_.read(start + std::to_string(serial) + ".tmp"), "user's");
}

TEST_F(AtomicFile, LeftOversOfKilledRunsGoAfterADay) {
  const auto now = fs::file_time_type::clock::now();
  for (const char* name : {"s.dat.qv5123-12-3.tmp", "s.dat.12-3.tmp", "s.dat.qv5123-notes.tmp",
                           "t.dat.qv5123-12-3.tmp", "s.dat.qv5123-12-4.tmp"}) {
    fs::last_write_time(folder_.write(name, "x"), now - std::chrono::hours(25));
  }
  fs::last_write_time(folder_ / "s.dat.qv5123-12-4.tmp", now - std::chrono::hours(23));
  ASSERT_TRUE(write_file_atomically(folder_ / "s.dat", "new").ok());
  EXPECT_FALSE(fs::exists(folder_ / "s.dat.qv5123-12-3.tmp"));
  EXPECT_EQ(folder_.size(), 5) << "what is young, another file's or not ours stays";
}

}  // namespace
}  // namespace qv5123
