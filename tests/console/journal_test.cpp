#include "console/journal.h"

#include <gtest/gtest.h>

#include <map>

#include "base/hex.h"
#include "console/setting_file.h"
#include "support/fake_prompts.h"
#include "support/inline_background.h"
#include "support/manual_scheduler.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using namespace std::chrono_literals;

JournalEntry entry_of(int value, std::filesystem::path file = "board.dat") {
  JournalEntry entry;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i) entry.image.set_entry(i, value);
  entry.setting_file = std::move(file);
  return entry;
}

/// With the moment that stands in brackets left out.
std::string without_time(std::string text) {
  const std::size_t at = text.find(" UTC)");
  constexpr std::size_t kLength = 19;
  return at == std::string::npos ? text : text.replace(at - kLength, kLength + 4, "TIME");
}

/// One computer, on which runs of the program begin, die and end.
struct Computer {
  test::TemporaryFolder folder;
  test::ManualScheduler clock;
  test::InlineBackground disk;
  test::FakePrompts user;
  std::map<std::filesystem::path, std::weak_ptr<void>> locks;

  struct Run {
    JournalEntry now;
    std::vector<JournalEntry> restored;
    bool file_is_newer = false;
    std::vector<std::string> statuses;
    std::unique_ptr<Journal> journal;
    Flow flow;
  };

  std::unique_ptr<Run> begin(std::filesystem::path place = {}) {
    auto run = std::make_unique<Run>();
    Journal::Surroundings around;
    around.folder = place.empty() ? folder.path() / "made" / "when needed" : place;
    around.lock = [this](const std::filesystem::path& path) -> Journal::Lock {
      if (!locks[path].expired() || !std::filesystem::exists(path.parent_path())) return nullptr;
      const auto lock = std::make_shared<int>();
      locks[path] = lock;
      return lock;
    };
    around.unsaved = [run = run.get()] { return run->now; };
    around.restore = [run = run.get()](const JournalEntry& entry, bool file_is_newer) {
      run->restored.push_back(entry);
      run->file_is_newer = file_is_newer;
      run->now = entry;
    };
    around.show_status = [run = run.get()](const std::string& text) { run->statuses.push_back(text); };
    around.font_file = [](const std::string& draft) { return draft.empty() ? "" : "file of " + draft; };
    run->journal = std::make_unique<Journal>(clock, disk, std::move(around));
    run->flow.start(start(*run->journal));
    return run;
  }
  Task<> start(Journal& journal) { co_await journal.start(user); }

  std::filesystem::path file(int slot) const {
    return Journal::slot_file(folder.path() / "made" / "when needed", slot);
  }
  std::vector<std::filesystem::path> put_aside() const {
    std::vector<std::filesystem::path> files;
    for (const auto& file : std::filesystem::directory_iterator(folder.path() / "made" / "when needed"))
      if (file.path().extension() == ".dat") files.push_back(file.path());
    return files;
  }
  std::optional<JournalEntry> kept(int slot) const {
    std::string text;
    if (!read_whole_file(file(slot), text).ok()) return std::nullopt;
    return read_journal(text);
  }
};

TEST(Journal, HoldsWhatIsUnsavedWrittenAtMostOnceInAnInterval) {
  Computer computer;
  auto run = computer.begin();
  computer.clock.advance(1min);
  EXPECT_FALSE(std::filesystem::exists(computer.file(1))) << "nothing was changed";
  for (int value = 1; value <= 9; ++value) {
    run->now = entry_of(value);
    computer.clock.advance(500ms);
  }
  EXPECT_FALSE(std::filesystem::exists(computer.file(1)));
  computer.clock.advance(500ms);
  EXPECT_EQ(computer.kept(1), entry_of(9));

  computer.disk.busy = true;
  computer.clock.advance(1min);
  EXPECT_EQ(computer.disk.waiting(), 0u) << "unchanged, it is not written again";
  run->now = entry_of(10);
  computer.clock.advance(1min);
  EXPECT_EQ(computer.disk.waiting(), 1u) << "a slow disk is not asked for more";
  computer.disk.busy = false;
  computer.disk.catch_up();
  EXPECT_EQ(computer.kept(1), entry_of(10));

  run->journal->saved(run->now.image);
  EXPECT_FALSE(std::filesystem::exists(computer.file(1))) << "a file holds it now";
  computer.disk.busy = true;
  run->now = entry_of(12);
  computer.clock.advance(Journal::kInterval);
  run->journal->saved(run->now.image);
  computer.disk.busy = false;
  computer.disk.catch_up();
  EXPECT_FALSE(std::filesystem::exists(computer.file(1))) << "saved while it was being kept";
  run->now = entry_of(11);
  computer.clock.advance(Journal::kInterval);
  EXPECT_EQ(computer.kept(1), entry_of(11));
  Flow(run->journal->end());
  computer.clock.advance(1min);
  EXPECT_FALSE(std::filesystem::exists(computer.file(1))) << "the end was as it should be";
  EXPECT_TRUE(run->statuses.empty());
}

TEST(Journal, OfADeadRunIsOfferedUntilTheUserDecides) {
  Computer computer;
  auto run = computer.begin();
  run->now = entry_of(7, u8"Gerät\n.dat");
  computer.clock.advance(Journal::kInterval);
  run.reset();

  // Cancelled, that is asked again, whatever the runs between do.
  for (int start = 0; start < 2; ++start) {
    auto between = computer.begin();
    ASSERT_EQ(computer.user.questions.size(), start + 1u);
    between->now = entry_of(50);
    computer.clock.advance(Journal::kInterval);
    EXPECT_EQ(computer.kept(2), entry_of(50));
    Flow(between->journal->end());
  }
  EXPECT_EQ(without_time(computer.user.questions[0].text),
            std::string(kRestoreQuestion) +
                "\n\nKept less than a minute ago (TIME): 1024 values other than 0." + kRestoreFile +
                "Gerät\n.dat");

  computer.user.hesitates = true;
  computer.user.answers = {Answer::yes};
  auto next = computer.begin();
  computer.clock.advance(1min);
  auto other = computer.begin();
  EXPECT_EQ(computer.user.questions.size(), 3u) << "one that is being asked about is not offered twice";
  EXPECT_TRUE(next->restored.empty());
  other.reset();
  computer.user.answer_now();
  EXPECT_EQ(next->restored, std::vector{entry_of(7, u8"Gerät\n.dat")});
  EXPECT_TRUE(next->restored[0].image.loaded());
  EXPECT_FALSE(computer.kept(1));
  EXPECT_EQ(computer.kept(2), next->now) << "it is still unsaved";
  next.reset();

  computer.user.hesitates = false;
  computer.user.answers = {Answer::no};
  auto last = computer.begin();
  EXPECT_TRUE(last->restored.empty());
  EXPECT_FALSE(computer.kept(1));
  EXPECT_FALSE(computer.kept(2));
  const auto aside = computer.put_aside();
  ASSERT_EQ(aside.size(), 1u) << "not thrown away";
  EXPECT_EQ(read_setting_file(aside[0]).image, entry_of(7).image);
  const auto now = std::filesystem::file_time_type::clock::now();
  std::filesystem::last_write_time(aside[0], now - 6 * 24h);
  computer.begin();
  EXPECT_EQ(computer.put_aside().size(), 1u);
  std::filesystem::last_write_time(aside[0], now - 8 * 24h);
  computer.begin();
  EXPECT_TRUE(computer.put_aside().empty()) << "for a week";
}

TEST(Journal, ThatIsOfferedTellsAgeCountAndANewerFile) {
  Computer computer;
  JournalEntry entry = entry_of(7, computer.folder / "board.dat");
  entry.font = "0\nfont";
  entry.typed = "AE Target: 5";
  entry.port = "COM5";
  auto run = computer.begin();
  run->now = entry;
  computer.clock.advance(Journal::kInterval);
  run.reset();
  EXPECT_EQ(computer.kept(1), entry) << "font and text as well";
  const auto now = std::filesystem::file_time_type::clock::now();
  std::filesystem::last_write_time(computer.file(1), now - 3h - 5min);
  UserDataImage image = entry.image;
  image.set_entry(5, 8);
  const std::filesystem::path file = computer.folder.write("board.dat", setting_text(image));
  std::filesystem::last_write_time(file, now - 4h);
  const std::string kept =
      std::string(kRestoreQuestion) +
      "\n\nKept 3 hours ago (TIME): 1 value that the setting file has otherwise."
      "\nThe font that was edited is kept as well.\nBeing typed: AE Target: 5\nThe port was: COM5" +
      kRestoreFile + path_text(file);
  computer.begin();
  std::filesystem::last_write_time(file, now);
  computer.user.answers = {Answer::yes};
  EXPECT_TRUE(computer.begin()->file_is_newer) << "so that it is not written over unasked";
  ASSERT_EQ(computer.user.questions.size(), 2u);
  EXPECT_EQ(without_time(computer.user.questions[0].text), kept);
  EXPECT_EQ(without_time(computer.user.questions[1].text), kept + kRestoreOlder);
  for (const std::string& text : {computer.user.questions[0].yes_text, computer.user.questions[0].no_text})
    EXPECT_TRUE(text.size() > 3 && text.find('&') == std::string::npos) << "no single letter presses it";
  for (const auto& [time, text] : {std::pair<std::chrono::seconds, const char*>{59s, "less than a minute"},
                                   {60s, "1 minute"},
                                   {47h, "47 hours"},
                                   {48h, "2 days"}})
    EXPECT_EQ(duration_text(time), text);
}

TEST(Journal, KeepsTextAndFontUntilTheyAreSavedTooAndLeavesThemWhereTheyAreNotWanted) {
  Computer computer;
  auto run = computer.begin();
  run->now.typed = "Value: 1";
  computer.clock.advance(Journal::kInterval);
  EXPECT_EQ(computer.kept(1), run->now);
  run->now.typed.clear();
  run->now.font = "5";
  run->journal->saved(run->now.image);
  computer.clock.advance(Journal::kInterval);
  EXPECT_EQ(computer.kept(1), run->now);
  run->now.font.clear();
  run->journal->look_again();
  EXPECT_FALSE(std::filesystem::exists(computer.file(1)));

  run->now.font = "draft";
  run->now.typed = "AE Target: 5";
  computer.clock.advance(Journal::kInterval);
  run.reset();
  computer.user.answers = {Answer::no};
  computer.begin();
  ASSERT_EQ(computer.put_aside().size(), 1u);
  const auto beside = [&](const char* extension) {
    std::string text;
    auto file = computer.put_aside()[0];
    read_whole_file(file.replace_extension(extension), text);
    return text;
  };
  EXPECT_EQ(beside(".font.bin"), "file of draft");
  EXPECT_EQ(beside(".typed.txt"), "AE Target: 5");
}

TEST(Journal, OfALivingRunIsLeftAlone) {
  Computer computer;
  std::vector<std::unique_ptr<Computer::Run>> runs;
  for (int i = 0; i <= Journal::kSlots; ++i) {
    runs.push_back(computer.begin());
    runs.back()->now = entry_of(i + 1);
    computer.clock.advance(Journal::kInterval);
  }
  EXPECT_TRUE(computer.user.questions.empty());
  for (int i = 0; i < Journal::kSlots; ++i) {
    EXPECT_EQ(computer.kept(i + 1), entry_of(i + 1));
    EXPECT_TRUE(runs[i]->statuses.empty());
  }
  EXPECT_EQ(runs.back()->statuses.size(), 1u) << "one too many is told so";
}

TEST(Journal, ThatIsHalfAlteredOrForeignIsNeitherOfferedNorTouched) {
  Computer computer;
  const std::string whole = journal_text(entry_of(42));
  std::vector<std::string> wrong = {"",
                                    "some file\n",
                                    setting_text(entry_of(42).image),
                                    whole + "\n",
                                    "QV5123 journal 3\nfile 99999999999999999999 x",
                                    "QV5123 journal 3\nfile -1 x",
                                    "QV5123 journal 3\nfile 9",
                                    "QV5123 journal 3\nfile 2 \xFF\xFE\n" + setting_text({})};
  for (std::size_t length = 1; length < whole.size(); length += 37) wrong.push_back(whole.substr(0, length));
  for (std::size_t at = 0; at < whole.size(); at += 41) {
    wrong.push_back(whole);
    wrong.back()[at] ^= 1;
  }
  for (const std::string& text : wrong) EXPECT_FALSE(read_journal(text)) << text.substr(0, 60);
  EXPECT_EQ(read_journal(whole), entry_of(42));
  // Before there was the port: FNV-1a by hand.
  std::string older = whole.substr(0, whole.rfind("sum "));
  older.replace(0, 16, "QV5123 journal 2");
  older.erase(older.find("port 0 \n"), 8);
  std::uint32_t sum = 0x811C9DC5;
  for (const char c : older) sum = (sum ^ static_cast<unsigned char>(c)) * 0x01000193;
  older += "sum " + lower_hex(sum, 8) + "\n";
  EXPECT_EQ(read_journal(older), entry_of(42));
  EXPECT_FALSE(read_journal(older + "\n"));

  std::filesystem::create_directories(computer.file(1).parent_path());
  ASSERT_TRUE(write_file_atomically(computer.file(1), whole.substr(1)).ok());
  auto run = computer.begin();
  run->now = entry_of(3);
  computer.clock.advance(Journal::kInterval);
  EXPECT_TRUE(computer.user.questions.empty());
  EXPECT_EQ(std::filesystem::file_size(computer.file(1)), whole.size() - 1);
  EXPECT_EQ(computer.kept(2), entry_of(3));
}

TEST(Journal, ThatCannotBeKeptIsToldOfOnce) {
  Computer computer;
  const auto run = computer.begin(computer.folder.write("file", "") / "folder");
  EXPECT_EQ(run->statuses.size(), 1u);

  auto later = computer.begin();
  std::filesystem::remove_all(computer.file(1).parent_path());
  later->now = entry_of(1);
  computer.clock.advance(1min);
  later->now = entry_of(2);
  computer.clock.advance(1min);
  ASSERT_EQ(later->statuses.size(), 1u);
  EXPECT_TRUE(later->statuses[0].starts_with("Unsaved values are not kept for after a crash: Cannot write "));
  std::filesystem::create_directories(computer.file(1).parent_path());
  computer.clock.advance(1min);
  EXPECT_EQ(computer.kept(1), entry_of(2)) << "tried again though nothing changed";
  later->now = entry_of(3);
  computer.clock.advance(1min);

  later.reset();
  computer.user.answers = {Answer::yes};
  computer.user.on_prompt = [&] { std::filesystem::create_directories(computer.file(2) / "in the way"); };
  const auto next = computer.begin();
  EXPECT_EQ(next->restored.size(), 1u);
  EXPECT_EQ(next->statuses.size(), 1u);
  EXPECT_EQ(computer.kept(1), entry_of(3)) << "it stays while it cannot be kept anew";
}

}  // namespace
}  // namespace qv5123
