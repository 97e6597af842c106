#include "console/setting_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/recent_files.h"
#include "console/setting_file.h"
#include "support/fake_prompts.h"
#include "support/inline_background.h"
#include "support/manual_scheduler.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

std::string lines(const std::string& line, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += line + "\r\n";
  return text;
}

// Writes its number to an entry of its own and notes in which order the pages were asked.
class NumberedPage : public Page {
 public:
  NumberedPage(int number, UserDataImage& image, std::vector<std::string>& calls)
      : number_(number), image_(image), calls_(calls) {}
  bool writes_file = true;
  bool save_writes_file() const override { return writes_file; }
  void save_to_user_data() override {
    calls_.push_back("save " + std::to_string(number_));
    image_.set_entry(static_cast<std::size_t>(number_), number_);
  }
  void reload_from_user_data() override {
    calls_.push_back("reload " + std::to_string(number_) + " " + std::to_string(image_.entry(0)));
  }

 private:
  int number_;
  UserDataImage& image_;
  std::vector<std::string>& calls_;
};

class SettingFilesTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  CQV5123Doc doc;
  test::FakePrompts user;
  test::InlineBackground work;
  std::vector<std::string> calls;
  std::vector<std::string> statuses;
  std::vector<std::string> used;
  std::vector<std::string> done_texts;
  std::string console;
  test::ManualScheduler clock;
  UserDataImage held;  // by the file used last
  NumberedPage gamma{1, doc.user_data, calls};
  NumberedPage lens{5, doc.user_data, calls};
  NumberedPage font{6, doc.user_data, calls};
  std::vector<Page*> pages{&gamma, &lens};
  SettingFiles files{doc,
                     user,
                     work,
                     clock,
                     {[this] { return pages; }, [this]() -> Page* { return &font; },
                      [this](const std::string& text) { statuses.push_back(text); },
                      [this](const fs::path& path, const UserDataImage& image) {
                        used.push_back(path.filename().string());
                        held = image;
                      },
                      [this](const std::string& text) { done_texts.push_back(text); },
                      [this](const std::string& text) { console += text; }}};

  void load() { const Flow flow(files.load()); }
  void save() { const Flow flow(files.save()); }
  static Task<> keep(Task<bool> task, bool& result) { result = co_await std::move(task); }
  bool done(Task<bool> task) {
    bool result = false;
    const Flow flow(keep(std::move(task), result));
    EXPECT_FALSE(flow.running());
    return result;
  }
};

TEST_F(SettingFilesTest, LoadRemembersReadsAndReloadsInOrder) {
  load();
  EXPECT_THAT(calls, ElementsAre()) << "cancelled";
  EXPECT_EQ(user.opens.at(0).filter, "Setting Files (*.dat)|*.dat|All Files (*.*)|*.*||");

  user.paths = {folder.write("set.dat", lines("9", 1024)), folder.path() / "gone.dat"};
  load();
  EXPECT_EQ(doc.setting_file, folder.path() / "set.dat");
  EXPECT_TRUE(doc.user_data.loaded());
  EXPECT_THAT(calls, ElementsAre("reload 1 9", "reload 5 9"));
  load();
  EXPECT_EQ(doc.setting_file, folder.path() / "gone.dat");
  ASSERT_EQ(user.messages.size(), 1u);
  EXPECT_THAT(user.messages[0].text, testing::HasSubstr("gone.dat"));
  EXPECT_EQ(doc.user_data.entry(0), 9);
  EXPECT_THAT(used, ElementsAre("set.dat"));

  user.paths = {folder.write("large", std::string(kSettingFileLimit + 1, '1'))};
  load();
  EXPECT_EQ(doc.setting_file, folder.path() / "gone.dat") << "what was refused is never written to";
}

TEST(RecentFiles, AreTheLastFourEachOnceTheLatestFirst) {
  RecentFiles recent({"/a", "/b", "", "/c", "/a", "/d", "/e"});
  // What stands before the names is the system's affair.
  const auto names = [&recent] {
    std::string all;
    for (const fs::path& file : recent.files()) all += file.filename().string();
    return all;
  };
  EXPECT_EQ(names(), "abcd");
  EXPECT_FALSE(recent.use("/x/../a"));
  EXPECT_TRUE(recent.use("/c"));
  EXPECT_TRUE(recent.use("/n"));
  EXPECT_EQ(names(), "ncab");
}

TEST_F(SettingFilesTest, SaveWritesTheRememberedFileAsItsPagesWriteItAndThenTheChosenOne) {
  doc.setting_file = folder.path() / "remembered.dat";
  user.paths = {folder.path() / "chosen.dat", folder.path()};
  save();
  EXPECT_THAT(calls, ElementsAre("save 1", "save 5"));
  EXPECT_EQ(folder.read("chosen.dat").substr(0, 18), "0\r\n1\r\n0\r\n0\r\n0\r\n5\r\n");
  EXPECT_EQ(folder.read("remembered.dat"), folder.read("chosen.dat"));
  EXPECT_EQ(doc.setting_file, folder.path() / "remembered.dat");

  gamma.writes_file = lens.writes_file = false;
  fs::remove(doc.setting_file);
  save();
  EXPECT_FALSE(fs::exists(doc.setting_file));
  EXPECT_EQ(user.messages.at(0).text, "File open error !!");
  EXPECT_THAT(statuses.at(0), testing::HasSubstr(path_text(folder.path())));
}

TEST_F(SettingFilesTest, SavesAskOnceForAFileAndRememberIt) {
  EXPECT_FALSE(done(files.write_user_data_file()));
  EXPECT_TRUE(doc.setting_file.empty());
  user.paths = {folder / "user.dat"};
  EXPECT_TRUE(done(files.write_user_data_file()));
  EXPECT_TRUE(done(files.write_user_data_file()));
  EXPECT_EQ(user.saves.size(), 2u) << "not asked again";
  EXPECT_EQ(folder.read("user.dat"), lines("0", 1024));
}

TEST_F(SettingFilesTest, ExitAsksAndEndsOnlyWhenNothingIsLost) {
  doc.setting_file = folder.path() / "user.dat";
  EXPECT_FALSE(done(files.may_exit())) << "cancelled";
  EXPECT_EQ(user.questions.at(0).text,
            path_text(folder.path() / "user.dat") + "Do you want to save settings to file?\r\n");
  EXPECT_EQ(user.questions[0].title, "Save setting");
  EXPECT_EQ(user.questions[0].buttons, Question::Buttons::yes_no_cancel);

  user.answers = {Answer::no, Answer::yes, Answer::yes};
  EXPECT_TRUE(done(files.may_exit()));
  EXPECT_FALSE(fs::exists(doc.setting_file));
  EXPECT_TRUE(done(files.may_exit()));
  EXPECT_THAT(calls, ElementsAre("save 1", "save 5", "save 6"));
  doc.setting_file = folder.path() / "no" / "such" / "folder.dat";
  EXPECT_FALSE(done(files.may_exit()));
  EXPECT_EQ(user.messages.back().text, "File open error !!");
}

TEST_F(SettingFilesTest, ReloadTakesTheFixedFileIfThereIsOne) {
  const auto reload = [this]() -> Task<> {
    const ReadSettings read = co_await reload_user_data_file(work, doc.user_data, folder.path());
    EXPECT_TRUE(read.result.ok());
  };
  Flow flow(reload());
  EXPECT_FALSE(doc.user_data.loaded());
  folder.write("QV512xUser.dat", "12");
  flow.start(reload());
  EXPECT_TRUE(doc.user_data.loaded());
  EXPECT_EQ(doc.user_data.entry(500), 12);
}

TEST_F(SettingFilesTest, WhatIsWrittenIsTheImageAtTheTimeOfTheSaveAndExitWaitsForIt) {
  doc.setting_file = folder.path() / "user.dat";
  work.busy = true;
  user.answers = {Answer::yes};
  bool ends = false;
  const Flow exit(keep(files.may_exit(), ends));
  doc.user_data.set_entry(0, 99);
  EXPECT_FALSE(ends);
  work.catch_up();
  clock.advance(std::chrono::milliseconds(0));
  EXPECT_TRUE(ends);
  EXPECT_EQ(folder.read("user.dat").substr(0, 6), "0\r\n1\r\n");
  EXPECT_EQ(held.entry(0), 0) << "what came later is not saved";
}

TEST_F(SettingFilesTest, ASaveWhileAFileIsReadGoesToTheOneBeforeIt) {
  doc.setting_file = folder / "old.dat";
  user.paths = {folder.write("new.dat", lines("9", 1024))};
  work.busy = true;
  const Flow loading(files.load());
  const Flow saving([](SettingFiles& files) -> Task<> { co_await files.write_user_data_file(); }(files));
  work.catch_up();
  EXPECT_EQ(folder.read("old.dat"), lines("0", 1024));
  EXPECT_EQ(folder.read("new.dat"), lines("9", 1024));
  EXPECT_EQ(doc.setting_file, folder / "new.dat");
}

TEST_F(SettingFilesTest, AFileThatIsNoneIsNamedAndWrittenOverOnlyWhenAsked) {
  const std::string oddity =
      "regs.txt: 1 number of 1024, the rest repeats 0 (line 1: \"0x0000=0x12\" is no decimal number)";
  user.paths = {folder.write("regs.txt", "0x0000=0x12 //R\r\n")};
  load();
  EXPECT_EQ(statuses.back(), oddity);
  EXPECT_EQ(console, "\r\n" + oddity);
  EXPECT_THAT(calls, ElementsAre("reload 1 0", "reload 5 0")) << "its values are taken all the same";

  EXPECT_FALSE(done(files.save_everything()));
  EXPECT_EQ(folder.read("regs.txt"), "0x0000=0x12 //R\r\n");
  EXPECT_THAT(user.questions.at(0).text, testing::HasSubstr(oddity));
  EXPECT_EQ(user.questions[0].preferred, Answer::no);
  user.answers = {Answer::yes};
  EXPECT_TRUE(done(files.save_everything()));
  EXPECT_EQ(folder.read("regs.txt~"), "0x0000=0x12 //R\r\n");
  EXPECT_TRUE(done(files.save_everything()));
  EXPECT_EQ(user.questions.size(), 2u) << "it is one now";
}

TEST_F(SettingFilesTest, ALoadedFileIsKeptOnceAndEveryWriteIsNamed) {
  const std::string loaded = lines("9", 1024);
  const std::string path = path_text(folder / "set.dat");
  user.paths = {folder.write("set.dat", loaded)};
  load();
  EXPECT_EQ(done_texts.back(), "Setting file loaded: " + path);
  EXPECT_TRUE(done(files.write_user_data_file()));
  EXPECT_FALSE(fs::exists(folder / "set.dat~")) << "nothing was changed yet";
  for (int value : {1, 2}) {
    doc.user_data.set_entry(900, value);
    user.on_prompt = [&] {
      EXPECT_THAT(done_texts.back(), testing::StartsWith("Setting file written: " + path))
          << "before the chooser";
    };
    save();
    EXPECT_EQ(done_texts.back(), "Setting file written: " + path + ", and no other file");
    EXPECT_EQ(folder.read("set.dat~"), loaded);
  }
  user.on_prompt = nullptr;
  doc.setting_file.clear();
  save();
  EXPECT_EQ(done_texts.back(), "No setting file was written");
  EXPECT_TRUE(user.questions.empty());
}

TEST_F(SettingFilesTest, AFileThatAnotherProgramChangedIsNotWrittenUnasked) {
  const std::string others = lines("3", 1024);
  const auto change = [&] { folder.write("set.dat", others); };
  user.paths = {folder.write("set.dat", lines("9", 1024))};
  load();
  doc.user_data.set_entry(900, 1);
  change();
  user.answers = {Answer::no, Answer::yes};
  EXPECT_FALSE(done(files.write_user_data_file()));
  EXPECT_EQ(user.questions.at(0).text,
            path_text(folder / "set.dat") +
                " was changed by another program: overwrite, load it, or save under another name?");
  EXPECT_EQ(folder.read("set.dat"), others);
  EXPECT_EQ(doc.user_data.entry(900), 3) << "loaded";

  doc.user_data.set_entry(900, 1);
  EXPECT_TRUE(done(files.write_user_data_file()));
  EXPECT_EQ(user.questions.size(), 1u) << "since then it is known";
  change();
  EXPECT_TRUE(done(files.write_user_data_file()));
  EXPECT_EQ(folder.read("set.dat"), setting_text(doc.user_data));

  change();
  EXPECT_FALSE(done(files.write_user_data_file())) << "the other chooser is cancelled";
  user.paths = {folder / "mine.dat"};
  EXPECT_TRUE(done(files.write_user_data_file()));
  EXPECT_EQ(folder.read("set.dat"), others);
  EXPECT_EQ(folder.read("mine.dat"), setting_text(doc.user_data));
  EXPECT_EQ(doc.setting_file, folder / "mine.dat");
}

TEST_F(SettingFilesTest, AFileOfRestoredValuesThatChangedSinceIsNotWrittenUnasked) {
  for (const bool changed : {false, true}) {
    doc.setting_file = folder.write("set.dat", lines("3", 1024));
    files.remember(doc.setting_file, changed);
    user.questions.clear();
    user.answers = {Answer::yes};
    EXPECT_TRUE(done(files.write_user_data_file()));
    EXPECT_EQ(user.questions.size(), changed ? 1u : 0u);
    EXPECT_EQ(folder.read("set.dat~"), lines("3", 1024)) << "as it was";
    user.answers.clear();
  }
}

TEST_F(SettingFilesTest, ADiskThatStandsStillIsToldOfAndDoesNotHoldUpTheEnd) {
  doc.setting_file = folder / "user.dat";
  work.busy = true;
  bool ends = false;
  user.answers = {Answer::yes, Answer::no, Answer::yes};
  const Flow exit(keep(files.may_exit(), ends));
  clock.advance(std::chrono::milliseconds(1999));
  EXPECT_TRUE(statuses.empty());
  clock.advance(std::chrono::milliseconds(1));
  EXPECT_EQ(statuses.back(), "Still writing " + path_text(folder / "user.dat") + " ...");
  EXPECT_EQ(user.questions.size(), 2u);
  EXPECT_FALSE(ends) << "No waits on";
  clock.advance(std::chrono::seconds(10));
  EXPECT_TRUE(ends);
  EXPECT_TRUE(files.given_up());
  work.catch_up();
}

}  // namespace
}  // namespace qv5123
