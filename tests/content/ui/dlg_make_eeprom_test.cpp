#include "content/ui/dlg_make_eeprom.h"

#include <gtest/gtest.h>

#include <fstream>

#include "console/atomic_file.h"
#include "support/fake_page_host.h"
#include "support/page_test.h"

namespace qv5123 {
namespace {

using test::find;

const std::string kDone = "Ok.. QV512x Flash data.bin";

class MakeEepromPage : public testing::Test {
 protected:
  MakeEepromPage() {
    write("fw.bin", std::string(1000, '\1'));
    write("font.bin", std::string(49152, '\2'));
    write("user.dat", "3\r\n4\r\n");
  }
  void write(const std::string& name, const std::string& bytes) {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }
  void type(const QString& label, const std::string& name) {
    find<QLineEdit>(page_, label)->setText(QString::fromStdString(path_text(folder_ / name)));
  }
  void type_all() {
    type("fw file", "fw.bin");
    type("font file", "font.bin");
    type("user file", "user.dat");
  }
  std::vector<std::string> shown() const {
    std::vector<std::string> texts;
    for (const auto& message : host_.user.messages) texts.push_back(message.text);
    return texts;
  }
  void make() { find<QPushButton>(page_, "Make Serial Flash FILE")->click(); }

  test::CurrentFolder folder_;
  test::FakeWire wire_;
  test::FakePageHost host_{wire_};
  CDlgMakeEeprom page_{host_};
};

TEST_F(MakeEepromPage, ChoosersFillTheirEditsAndTheImageIsSaved) {
  host_.user.paths = {folder_ / "fw.bin", folder_ / "font.bin", folder_ / "user.dat", folder_ / "out.bin"};
  for (const auto* label : {"Choose fw file", "Choose font file", "Choose user file"}) {
    find<QPushButton>(page_, label)->click();
  }
  make();
  EXPECT_EQ(shown(), std::vector<std::string>{kDone});
  ASSERT_EQ(host_.user.opens.size(), 3u);
  ASSERT_EQ(host_.user.saves.size(), 1u);
  EXPECT_EQ(host_.user.opens[0].filter, "Binary File(*.bin)|*.bin");
  EXPECT_EQ(host_.user.opens[2].filter, "DAT file(*.dat)|*.dat");
  EXPECT_EQ(host_.user.opens[2].initial_name, ".dat");
  EXPECT_EQ(host_.user.saves[0].filter, "Binary(*.bin)|*.bin");
  EXPECT_EQ(host_.user.saves[0].initial_name, ".bin");
  std::string image;
  ASSERT_TRUE(read_whole_file(folder_ / "out.bin", image).ok());
  ASSERT_EQ(image.size(), 262144u);
  EXPECT_EQ(image.substr(0, 1001), std::string(1000, '\1') + '\xFF');
  EXPECT_EQ(image.substr(0x10000, 3), "\3\4\4");
  EXPECT_EQ(image[0x20000], '\2');
  EXPECT_EQ(image[0x30000 + 999], '\1');
}

TEST_F(MakeEepromPage, AnEmptyPathStopsBeforeAnythingIsRead) {
  type_all();
  find<QLineEdit>(page_, "font file")->clear();
  make();
  EXPECT_EQ(shown(), std::vector<std::string>{"Error!!  Any File is not assigned.."});
  EXPECT_TRUE(host_.user.saves.empty());
}

TEST_F(MakeEepromPage, ACancelledOutputIsAnErrorAndStillOk) {
  type_all();
  make();
  EXPECT_EQ(shown(), (std::vector<std::string>{"Flash file generation error", kDone}));
}

TEST_F(MakeEepromPage, AnOutputThatCannotBeCreatedIsNamedInTheStatusOnly) {
  type_all();
  host_.user.paths = {folder_ / "no folder" / "out.bin"};
  make();
  EXPECT_EQ(shown(), std::vector<std::string>{kDone});
  ASSERT_EQ(host_.statuses.size(), 1u);
  EXPECT_NE(host_.statuses[0].find("out.bin"), std::string::npos);
}

TEST_F(MakeEepromPage, ATooLargeFileIsRefusedBeforeTheOutputIsAskedFor) {
  write("font.bin", std::string(65537, '\2'));
  type_all();
  make();
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_NE(shown()[0].find("has 65537 bytes, the limit is 65536 bytes"), std::string::npos);
  EXPECT_TRUE(host_.user.saves.empty());
}

}  // namespace
}  // namespace qv5123
