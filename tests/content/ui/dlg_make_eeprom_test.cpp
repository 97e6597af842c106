#include "content/ui/dlg_make_eeprom.h"

#include <gtest/gtest.h>

#include <QtWidgets>

#include "console/setting_file.h"
#include "console/version_box.h"
#include "content/flash_image.h"
#include "content/ui/flash_map_view.h"
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
  EXPECT_EQ(host_.user.saves.size(), 1u) << "not asked where to";
}

TEST_F(MakeEepromPage, TheMapTellsWhatTheChosenFilesFill) {
  page_.show();
  folder_.write("fw.bin", std::string(4096, '\1'));
  UserDataImage image;
  store_version(image, 1, {1, 2, 30});
  folder_.write("user.dat", setting_text(image));
  const auto place = [this](std::size_t offset) {
    fake_.advance(400);
    for (const FlashPlace& one : page_.findChild<FlashMapView*>()->look().places)
      if (one.offset == offset) return one.text + " | " + std::to_string(one.filled);
    return std::string();
  };
  EXPECT_EQ(place(0x20000), "font: no file chosen | 0");
  type_all();
  EXPECT_EQ(place(0), "firmware: fw.bin, 4096 of 65536 bytes, CRC-32 3AD9E426 | 4096");
  EXPECT_EQ(place(0x30000), "firmware again: the same bytes | 4096");
  folder_.write("fw.bin", std::string("\1\2Leverage V 1\3 ISP firmware, Ver. 2.31_b \xFFv9.9", 47));
  user_.type("user file", user_.text("user file") + " ");
  EXPECT_EQ(place(0),
            "firmware: fw.bin, 47 of 65536 bytes, \"ISP firmware, Ver. 2.31_b\", CRC-32 F3078788 | 47");
  EXPECT_EQ(place(0x10000), "user data: user.dat, HW 0.0.0  SW 1.2.30  ISP 0.0.0 | 2048");
  EXPECT_EQ(place(0x15000), "user data again, piece 5: 233 bytes | 233");
  folder_.write("fw.bin", std::string(70000, '\1'));
  user_.type("font file", QString::fromStdString(path_text(folder_ / "no.bin")));
  EXPECT_EQ(place(0), "firmware: fw.bin is too large, 70000 of 65536 bytes | 0");
  EXPECT_EQ(place(0x20000), "font: no.bin cannot be read, erased | 0");
}

TEST_F(MakeEepromPage, DroppedFilesGoWhereTheyBelong) {
  page_.show();
  folder_.write("big.bin", std::string(49152, '\0'));
  QMimeData files;
  QList<QUrl> urls;
  for (const char* name : {"user.dat", "fw.bin", "big.bin"})
    urls << QUrl::fromLocalFile(QString::fromStdString(path_text(folder_ / name)));
  files.setUrls(urls);
  const auto drop = [this, &files](QPoint at) {
    QDragEnterEvent enter(at, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&page_, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event(at, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&page_, &event);
  };
  drop({1, 1});
  for (const auto& [edit, name] :
       {std::pair{"user file", "user.dat"}, {"fw file", "fw.bin"}, {"font file", "big.bin"}})
    EXPECT_TRUE(user_.text(edit).endsWith(name)) << edit;
  files.setUrls({urls[1]});
  drop(user_.find<QLineEdit>("font file")->geometry().center());
  EXPECT_TRUE(user_.text("font file").endsWith("fw.bin")) << "where it was dropped";
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
