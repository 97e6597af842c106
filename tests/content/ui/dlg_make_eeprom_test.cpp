#include "content/ui/dlg_make_eeprom.h"

#include <gtest/gtest.h>

#include "support/page_bench.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

const std::string kDone = "Ok.. QV512x Flash data.bin";

class MakeEepromPage : public test::PageBench<CDlgMakeEeprom> {
 protected:
  MakeEepromPage() {
    folder_.write("fw.bin", std::string(1000, '\1'));
    folder_.write("font.bin", std::string(49152, '\2'));
    folder_.write("user.dat", "3\r\n4\r\n");
  }
  void type(const QString& label, const std::string& name) {
    user_.type(label, QString::fromStdString(path_text(folder_ / name)));
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
  void make() { user_.click("Make Serial Flash FILE"); }

  const test::TemporaryFolder folder_;
};

TEST_F(MakeEepromPage, ChoosersFillTheirEditsAndTheImageIsSaved) {
  host_.user.paths = {folder_ / "fw.bin", folder_ / "font.bin", folder_ / "user.dat", folder_ / "out.bin"};
  for (const auto* label : {"Choose fw file", "Choose font file", "Choose user file"}) user_.click(label);
  make();
  EXPECT_EQ(shown(), std::vector<std::string>{kDone});
  ASSERT_EQ(host_.user.opens.size(), 3u);
  ASSERT_EQ(host_.user.saves.size(), 1u);
  EXPECT_EQ(host_.user.opens[0].filter, "Binary File(*.bin)|*.bin");
  EXPECT_EQ(host_.user.opens[2].filter, "DAT file(*.dat)|*.dat");
  EXPECT_EQ(host_.user.opens[2].initial_name, ".dat");
  EXPECT_EQ(host_.user.saves[0].filter, "Binary(*.bin)|*.bin");
  EXPECT_EQ(host_.user.saves[0].initial_name, ".bin");
  const std::string image = folder_.read("out.bin");
  ASSERT_EQ(image.size(), 262144u);
  EXPECT_EQ(image.substr(0, 1001), std::string(1000, '\1') + '\xFF');
  EXPECT_EQ(image.substr(0x10000, 3), "\3\4\4");
  EXPECT_EQ(image[0x20000], '\2');
  EXPECT_EQ(image[0x30000 + 999], '\1');
}

TEST_F(MakeEepromPage, AnEmptyPathStopsBeforeAnythingIsRead) {
  type_all();
  user_.type("font file", QString());
  make();
  EXPECT_EQ(shown(), std::vector<std::string>{"Error!!  Any File is not assigned.."});
  EXPECT_TRUE(host_.user.saves.empty());
}

TEST_F(MakeEepromPage, ACancelledOutputIsAnErrorAndOneThatCannotBeCreatedAStatusAndBothAreStillOk) {
  type_all();
  make();
  EXPECT_EQ(shown(), (std::vector<std::string>{"Flash file generation error", kDone}));
  host_.user.paths = {folder_ / "no folder" / "out.bin"};
  make();
  EXPECT_EQ(shown().size(), 3u);
  EXPECT_EQ(shown().back(), kDone);
  ASSERT_EQ(host_.statuses.size(), 1u);
  EXPECT_NE(host_.statuses[0].find("out.bin"), std::string::npos);
}

TEST_F(MakeEepromPage, ATooLargeFileIsRefusedBeforeTheOutputIsAskedFor) {
  folder_.write("font.bin", std::string(65537, '\2'));
  type_all();
  make();
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_NE(shown()[0].find("has 65537 bytes, the limit is 65536 bytes"), std::string::npos);
  EXPECT_TRUE(host_.user.saves.empty());
}

}  // namespace
}  // namespace qv5123
