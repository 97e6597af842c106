// What disks and people do to files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "console/journal_entry.h"
#include "console/setting_file.h"
#include "content/flash_image.h"
#include "registers/register_file.h"
#include "support/program.h"
#include "support/temporary_folder.h"
#include "tuning/register_script.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

UserDataImage image_of(int entry) {
  UserDataImage image;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i) image.set_entry(i, entry);
  return image;
}

FileResult save(const fs::path& path, const UserDataImage& image) {
  return write_file_atomically(path, setting_text(image));
}

/// Saves the one and the other image in turn until it is killed; tells when the first one is saved.
[[noreturn]] void save_for_ever(const fs::path& path, std::size_t first, int told) {
  const UserDataImage images[] = {image_of(1), image_of(222)};
  for (std::size_t i = first;; ++i) {
    if (!save(path, images[i % 2]).ok()) ::_exit(1);
    if (i == first && ::write(told, "s", 1) != 1) ::_exit(1);
  }
}

TEST(SavingKilled, LeavesTheOldFileOrTheNewOneWhole) {
  const test::TemporaryFolder folder;
  const fs::path path = folder.path() / "board.dat";
  const std::string texts[] = {setting_text(image_of(1)), setting_text(image_of(222))};
  ASSERT_TRUE(save(path, image_of(1)).ok());
  std::mt19937 random(1);
  std::size_t found[2] = {0, 0};
  for (int round = 0; round < 200; ++round) {
    int told[2];
    ASSERT_EQ(::pipe(told), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) save_for_ever(path, static_cast<std::size_t>(round), told[1]);
    ::close(told[1]);
    char saved = 0;
    ASSERT_EQ(::read(told[0], &saved, 1), 1);
    ::close(told[0]);
    // The moment is what is random here.
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "it saved until it was killed";
    const std::string text = folder.read("board.dat");
    ASSERT_TRUE(text == texts[0] || text == texts[1]) << "round " << round;
    ++found[text == texts[1]];
  }
  EXPECT_GT(found[0], 0u) << "both ends of a save were met";
  EXPECT_GT(found[1], 0u);
}

/// Root may write anywhere; nobody may not.
class AsNobody {
 public:
  AsNobody() : was_root_(::geteuid() == 0 && ::seteuid(65534) == 0) {}
  ~AsNobody() {
    if (was_root_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }

 private:
  const bool was_root_;
};

TEST(HostileFolders, AReadOnlyOneIsNamedAndKeepsItsFile) {
  const test::TemporaryFolder folder;
  const fs::path path = folder.write("board.dat", "old");
  fs::permissions(folder.path(), fs::perms(0555));
  FileResult result;
  {
    const AsNobody nobody;
    result = save(path, image_of(1));
  }
  fs::permissions(folder.path(), fs::perms(0755));
  EXPECT_EQ(result.text, "Cannot write " + path.string() + ": Permission denied");
  EXPECT_EQ(folder.read("board.dat"), "old");
}

TEST(HostileFolders, ARemovedOneIsNamed) {
  const test::TemporaryFolder folder;
  const fs::path path = folder.path() / "gone" / "board.dat";
  EXPECT_EQ(save(path, image_of(1)).text, "Cannot write " + path.string() + ": No such file or directory");
  EXPECT_EQ(read_setting_file(path).result.text,
            "Cannot read " + path.string() + ": No such file or directory");
  EXPECT_FALSE(fs::exists(folder.path() / "gone"));
}

TEST(HostileFolders, NamesInAnyLanguageAreFound) {
  const test::TemporaryFolder folder;
  const fs::path path = folder.path() / fs::path(u8"Größe 設定") / fs::path(u8"файл.dat");
  fs::create_directories(path.parent_path());
  ASSERT_EQ(save(path, image_of(7)).text, "");
  const ReadSettings read = read_setting_file(path);
  ASSERT_EQ(read.result.text, "");
  EXPECT_EQ(read.image.entry(9), 7);
  EXPECT_THAT(read_setting_file(path / "x").result.text, testing::HasSubstr("Größe 設定/файл.dat"));
  const FlashBuild build = build_flash_image({path, path, path});
  EXPECT_EQ(build.refusal, "");
  EXPECT_EQ(build.image[flash::kUserOffset + 9], 7);
}

TEST(HostileFolders, NamesThatAreNoUnicodeTextAreFound) {
  const test::TemporaryFolder folder;
  const fs::path path = folder / "board\xE4\xFF.dat";
  ASSERT_EQ(save(path, image_of(7)).text, "");
  EXPECT_EQ(read_setting_file(path).image.entry(9), 7);
  JournalEntry entry{image_of(7), path};
  EXPECT_EQ(read_journal(journal_text(entry)), entry);
  EXPECT_EQ(test::Program("qv5123ctl", {"settings", "set", path.string(), "9=8", "--json"}).end(), 0);
  EXPECT_EQ(read_setting_file(path).image.entry(9), 8);
}

/// Four gigabytes that take no room.
TEST(HugeFile, IsRefusedOrReadInPiecesWhereASmallOneBelongs) {
  const test::TemporaryFolder folder;
  const fs::path path = folder.write("huge", "");
  fs::resize_file(path, std::uintmax_t{4} << 30);
  const ReadSettings read = read_setting_file(path);
  EXPECT_EQ(read.result.text, "Cannot read " + path.string() + ": larger than 1048576 bytes");
  EXPECT_FALSE(read.image.loaded());
  std::string bytes;
  EXPECT_FALSE(read_whole_file(path, bytes).ok());
  EXPECT_THAT(RegDescription::load(path).problem, testing::HasSubstr("larger than"));
  EXPECT_THAT(build_flash_image({path, {}, {}}).refusal, testing::HasSubstr("4294967296 bytes"));
  RegisterScript script(std::make_unique<std::ifstream>(path, std::ios::binary));
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(script.tick().finished);
}

}  // namespace
}  // namespace qv5123
