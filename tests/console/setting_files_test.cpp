#include "console/setting_files.h"

#include "console/recent_files.h"
#include "console/setting_file.h"
#include "support/fake_prompts.h"
#include "support/inline_background.h"
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
  UserDataImage held;  // by the file used last
  NumberedPage gamma{1, doc.user_data, calls};
  NumberedPage lens{5, doc.user_data, calls};
  NumberedPage font{6, doc.user_data, calls};
  std::vector<Page*> pages{&gamma, &lens};
  SettingFiles files{doc,
                     user,
                     work,
                     {[this] { return pages; }, [this]() -> Page* { return &font; },
                      [this](const std::string& text) { statuses.push_back(text); },
                      [this](const fs::path& path, const UserDataImage& image) {
                        used.push_back(path.filename().string());
                        held = image;
                      }}};

  void load() { const Flow flow(files.load()); }
  void save() { const Flow flow(files.save()); }
  bool done(Task<bool> task) {
    bool result = false;
    const Flow flow([](Task<bool> task, bool& result) -> Task<> { result = co_await std::move(task); }(
                                                          std::move(task), result));
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

/// The files' names in their order; what stands before them is the system's affair.
std::string names(const RecentFiles& recent) {
  std::string all;
  for (const std::filesystem::path& file : recent.files()) all += file.filename().string();
  return all;
}

TEST(RecentFiles, AreTheLastFourEachOnceTheLatestFirst) {
  RecentFiles recent({"/a", "/b", "", "/c", "/a", "/d", "/e"});
  EXPECT_EQ(names(recent), "abcd");
  EXPECT_FALSE(recent.use("/x/../a"));
  EXPECT_TRUE(recent.use("/c"));
  EXPECT_TRUE(recent.use("/n"));
  EXPECT_EQ(names(recent), "ncab");
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
    const FileResult result = co_await reload_user_data_file(work, doc.user_data, folder.path());
    EXPECT_TRUE(result.ok());
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
  const Flow exit(
      [](SettingFiles& files, bool& ends) -> Task<> { ends = co_await files.may_exit(); }(files, ends));
  doc.user_data.set_entry(0, 99);
  EXPECT_FALSE(ends);
  work.catch_up();
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

}  // namespace
}  // namespace qv5123
