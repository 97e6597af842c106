#include "content/ui/dlg_make_eeprom.h"

#include <gtest/gtest.h>

#include "content/flash_image.h"
#include "support/page_bench.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

const std::string kDone = "Ok.. QV512x Flash data.bin";

class MakeEepromPage : public test::PageBench<CDlgMakeEeprom> {
 protected:
  MakeEepromPage() {
    folder_.write("fw.bin", "\1");
    folder_.write("font.bin", "\2");
    folder_.write("user.dat", "3\r\n4\r\n");
  }
  void type_all() {
    for (const auto& [label, name] : {std::pair{"fw", "fw.bin"}, {"font", "font.bin"}, {"user", "user.dat"}})
      user_.type(QString(label) + " file", QString::fromStdString(path_text(folder_ / name)));
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
  EXPECT_EQ(host_.user.opens[0].filter, "Binary File(*.bin)|*.bin");
  EXPECT_EQ(host_.user.opens[2].filter, "DAT file(*.dat)|*.dat");
  EXPECT_EQ(host_.user.opens[2].initial_name, ".dat");
  EXPECT_EQ(host_.user.saves.at(0).filter, "Binary(*.bin)|*.bin");
  EXPECT_EQ(host_.user.saves[0].initial_name, ".bin");
  EXPECT_EQ(folder_.read("out.bin"),
            build_flash_image({folder_ / "fw.bin", folder_ / "font.bin", folder_ / "user.dat"}).image);
}

TEST_F(MakeEepromPage, PastedPathsAreReadAndWhatIsMissingIsNamedToTheEnd) {
  type_all();
  user_.type("fw file", QString::fromStdString("  \"" + path_text(folder_ / "fw.bin") + "\"\n"));
  user_.type("font file", QString::fromStdString(path_text(folder_ / "no.bin")));
  host_.user.paths = {folder_ / "out.bin"};
  make();
  EXPECT_EQ(folder_.read("out.bin")[0], '\1');
  const std::string font = "font file: Cannot read " + path_text(folder_ / "no.bin") +
                           ": No such file or directory. Erased: 0x20000";
  const std::string user = "user file: user.dat: 2 numbers of 1024, the rest repeats 4";
  EXPECT_EQ(host_.console, "\r\n" + font + "\r\n" + user);
  EXPECT_EQ(host_.last_status(),
            "Flash image written: " + path_text(folder_ / "out.bin") + ", but " + font + "; " + user);
  user_.type("font file", " \" \" ");
  make();
  EXPECT_EQ(shown().back(), "Error!!  Any File is not assigned..");
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
  EXPECT_EQ(host_.last_status(), "No flash image was written");
  host_.user.paths = {folder_ / "no folder" / "out.bin"};
  make();
  EXPECT_EQ(shown().back(), kDone);
  EXPECT_NE(host_.last_status().find("Cannot write "), std::string::npos);
}

}  // namespace
}  // namespace qv5123
