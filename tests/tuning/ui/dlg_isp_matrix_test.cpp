#include "tuning/ui/dlg_isp_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/page_bench.h"
#include "support/traffic_text.h"

namespace qv5123 {
namespace {

class MatrixPage : public test::PageBench<CDlgIspMatrix> {
 protected:
  QString patch(std::size_t i, const char* colour) { return QString("%1 %2").arg(kPatchCaptions[i], colour); }
  void type_patch(std::size_t i, int r, int g, int b) {
    user_.type(patch(i, "R"), r);
    user_.type(patch(i, "G"), g);
    user_.type(patch(i, "B"), b);
  }
  /// The chart as a camera without any crosstalk sees it, in light of little red.
  void type_chart() {
    for (std::size_t i = 0; i < kPatches; ++i) {
      const LinearRgb& colour = kPatchReferences[i];
      const auto counts = [](double value) { return std::max(1, static_cast<int>(std::lround(value))); };
      type_patch(i, counts(5e5 * colour[0]), counts(1e6 * colour[1]), counts(1e6 * colour[2]));
    }
  }
  std::vector<QString> codes() {
    std::vector<QString> texts;
    for (const char* row : {"R", "G", "B"}) {
      for (const char* column : {"R", "G", "B"})
        texts.push_back(user_.text(QString("%1 from %2").arg(row, column)));
    }
    return texts;
  }
  /// Plays a chip whose picker reads 10, 20, 30.
  void answer_reads() {
    fake_.sender.chip = [this](const std::string& bytes) {
      if (bytes == "@940c*@943d*") fake_.receive("~0a^");
      if (bytes == "@940c*@943e*") fake_.receive("~14^");
      if (bytes == "@940c*@943f*") fake_.receive("~1E^");
      if (bytes == "@940a*@9429*") fake_.receive("~05^");
    };
  }
  bool enabled(const QString& name) { return user_.find<QWidget>(name)->isEnabled(); }
};

const std::vector<QString> kIdentity = {"0x0400", "0x0000", "0x0000", "0x0000", "0x0400",
                                        "0x0000", "0x0000", "0x0000", "0x0400"};

TEST_F(MatrixPage, MeasuresPatchAfterPatch) {
  answer_reads();
  user_.expect_named_controls();
  EXPECT_FALSE(enabled("GET COLOR"));
  user_.click("Input Manually");
  EXPECT_TRUE(enabled(patch(9, "B")));
  user_.click("Enable Color Picker");
  EXPECT_FALSE(user_.checked("Input Manually"));
  EXPECT_FALSE(enabled(patch(9, "B")));
  EXPECT_TRUE(enabled(patch(0, "B")));
  EXPECT_FALSE(enabled("GET COLOR")) << "not before the chip has followed";
  fake_.advance(3000);
  EXPECT_EQ(fake_.sender.wire(),
            "@940a*@9429*@920a*@9220*@9380*@920a*@9229*@9385*@a000*@a100*"
            "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*@93c0*");
  EXPECT_EQ(host_.last_status(),
            "Start color capture. Please click direction button to move cursor on screen.");

  user_.click(kPatchCaptions[5]);
  user_.type("Patch Step", 100);
  auto* get_color = user_.find<QPushButton>("GET COLOR");
  get_color->setFocus();
  fake_.sender.writes.clear();
  user_.type("X Pos", 0x3C1);
  get_color->click();
  fake_.advance(400);
  EXPECT_TRUE(fake_.sender.wire().starts_with("@920c*@9238*@9303*@920c*@9239*@93c1*@940c*@943d*"))
      << "not before the cursor is there";
  EXPECT_FALSE(enabled("RIGHT"));
  EXPECT_EQ(page_.focusWidget()->focusPolicy(), Qt::NoFocus) << "no other control gets the next key";
  fake_.advance(2000);
  EXPECT_EQ(page_.focusWidget(), get_color);
  EXPECT_EQ(user_.number(patch(5, "R")), 10);
  EXPECT_EQ(user_.number(patch(5, "B")), 30);
  EXPECT_TRUE(user_.checked(kPatchCaptions[6]));
  EXPECT_TRUE(enabled(patch(6, "G")));
  EXPECT_EQ(user_.number("X Pos"), 461) << "the start of the next row";
  EXPECT_EQ(user_.number("Y Pos"), 640);

  fake_.sender.chip = nullptr;
  user_.click("GET COLOR");
  fake_.advance(2000);
  EXPECT_EQ(host_.last_status(), "GET COLOR: the chip did not answer.");
  EXPECT_EQ(user_.number(patch(6, "R")), 0);
}

TEST_F(MatrixPage, CalculatesOnlyWithGrey) {
  user_.click("Calculate");
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "Please get color of gray!");

  type_chart();
  auto* swatches = user_.find<PatchSwatchView>("Patches");
  EXPECT_TRUE(swatches->summary().startsWith("CIEDE2000:   mean "));
  user_.click("Calculate");
  // Rounding of the counts and truncation of the codes leave a unit or two.
  for (std::size_t i = 0; i < 9; ++i) {
    const int code = codes()[i].toInt(nullptr, 16);
    const int wanted = i % 4 == 0 ? 0x400 : 0;
    EXPECT_LE(std::abs((code >= 0x1000 ? code - 0x2000 : code) - wanted), 40) << i;
  }
  EXPECT_TRUE(swatches->text_at(swatches->cell(14).center()).startsWith("Red(R,G,B): CIEDE2000 "));
  user_.type("Correction Ratio", 0);
  user_.click("Calculate");
  EXPECT_EQ(codes(), kIdentity);

  user_.click("Clear");
  EXPECT_EQ(user_.number(patch(0, "R")), 0);
  EXPECT_EQ(codes(), std::vector<QString>(9));
  EXPECT_EQ(swatches->summary(), "");
}

TEST_F(MatrixPage, SetDerivesStoresAndSendsARow) {
  user_.type("R from R", QString("0x0500"));
  user_.type("R from B", QString("1F00"));
  user_.click("Light-2");
  EXPECT_EQ(codes(), std::vector<QString>(9, "0x0000")) << "the other light source's own";
  user_.choose("Video Mode", 3);
  user_.type("R from R", QString("0x0500"));
  user_.type("R from B", QString("1F00"));
  page_.chosen_again();
  user_.click("Row R Set");
  EXPECT_EQ(codes()[1], "0x0000") << "1 - 1.25 + 0.25";
  EXPECT_EQ(codes()[5], "0x0400");
  fake_.advance(1000);
  EXPECT_EQ(fake_.sender.writes, (std::vector<std::string>{"@4e02*", "@ca03*", "@5805*", "@5800*", "@5800*",
                                                           "@5800*", "@58ff*", "@5800*"}));

  fake_.sender.writes.clear();
  user_.type("G from R", QString("0x2000"));
  user_.click("Row G Set");
  fake_.advance(1000);
  EXPECT_TRUE(fake_.sender.writes.empty());
  EXPECT_NE(host_.last_status().find("G from R takes 0x0000..0x1FFF"), std::string::npos);
  page_.save_to_user_data();
  EXPECT_EQ(host_.doc.user_data.word(635 + 36), 0x500);
  EXPECT_EQ(host_.doc.user_data.word(635 + 36 + 4), 0xFF00);
}

TEST_F(MatrixPage, LoadsFromTheChipOrSaysThatItFailed) {
  std::string reply(432, '0');
  reply.replace(0, 2, "1f").replace(6, 2, "80");  // TVI, row R, Outdoor: high and low byte of the first
  user_.click("Load <- ISP");
  fake_.advance(100);
  EXPECT_EQ(fake_.sender.wire(), "@6a00*");
  fake_.receive("~" + reply + "^");
  fake_.advance(300);
  EXPECT_EQ(codes()[0], "0x1F80");
  EXPECT_TRUE(host_.statuses.empty());

  user_.click("Load <- ISP");
  fake_.advance(100);
  fake_.receive("~00^");
  fake_.advance(2000);
  EXPECT_EQ(host_.last_status(), "ISP Load Fail...");
  EXPECT_EQ(codes()[0], "0x1F80");
}

TEST_F(MatrixPage, SavesAllMatricesAndEndsTheCapture) {
  answer_reads();
  for (std::size_t i = 0; i < 54; ++i) host_.doc.user_data.set_entry(382 + i, static_cast<int>(i));
  user_.click("Load <- File");
  EXPECT_EQ(host_.last_status(), "Load File ok");
  user_.click("Enable Color Picker");
  fake_.advance(3000);
  fake_.sender.writes.clear();
  user_.click("File/Flash Save");
  EXPECT_EQ(host_.last_status(), "CCM Data Saving... Please wait");
  EXPECT_EQ(host_.full_saves, 1);
  fake_.advance((4 + 4 * 55) * 50);
  MatrixValues loaded;
  reload_from_user_data(loaded, host_.doc.user_data);
  EXPECT_TRUE(fake_.sender.wire().starts_with(bytes_of(matrix_full_save(loaded))));
  fake_.advance(2000);
  EXPECT_TRUE(
      fake_.sender.wire().ends_with("@f900*@940a*@9429*@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*"));
  EXPECT_FALSE(user_.checked("Enable Color Picker"));
  EXPECT_TRUE(enabled("Enable Color Picker"));
  ASSERT_GE(host_.statuses.size(), 2u);
  EXPECT_EQ(host_.statuses[host_.statuses.size() - 2], "End color capture.");
  EXPECT_EQ(host_.last_status(), "Transfered Linear Matrix parameters to ISP. Enable color correction.");

  host_.write_succeeds = false;
  user_.click("File/Flash Save");
  fake_.advance(20000);
  EXPECT_EQ(host_.last_status(), "Only the chip was saved: no setting file was written.");
}

TEST_F(MatrixPage, ComesBackFromTheUserDataAsItWas) {
  std::mt19937 random(5);
  for (std::size_t base : {382, 749, 845, 635}) {
    for (std::size_t i = 0; i < 54; ++i)
      host_.doc.user_data.set_entry(base + i, static_cast<int>(random() & 0xFF));
  }
  const UserDataImage before = host_.doc.user_data;
  page_.reload_from_user_data();
  for (int mode = 0; mode < 4; ++mode) {
    user_.choose("Video Mode", mode);
    for (const char* light : {"Outdoor", "Light-1", "Light-2"}) user_.click(light);
  }
  page_.chosen_again();
  host_.doc.user_data = {};
  page_.save_to_user_data();
  EXPECT_EQ(host_.doc.user_data, before);
}

TEST_F(MatrixPage, ThePickerStaysWhereASilentChipOrALostPortLeftIt) {
  user_.click("Enable Color Picker");
  fake_.advance(3000);
  EXPECT_EQ(fake_.sender.wire(), "@940a*@9429*@940a*@9429*") << "nothing is made of no answer";
  EXPECT_EQ(host_.last_status(), "Color picker: no answer from 0xFA29");
  EXPECT_FALSE(user_.checked("Enable Color Picker"));
  EXPECT_FALSE(enabled("GET COLOR"));

  answer_reads();
  user_.click("Enable Color Picker");
  EXPECT_EQ(host_.busy.back(), true);
  fake_.advance(3000);
  EXPECT_EQ(host_.busy.back(), false);
  user_.click("Enable Color Picker");
  fake_.advance(120);
  fake_.sender.connected = false;
  fake_.advance(3000);
  EXPECT_EQ(host_.last_status(), "Color picker: not all of it reached the chip");
  EXPECT_TRUE(user_.checked("Enable Color Picker"));
  EXPECT_TRUE(enabled("GET COLOR"));
}

}  // namespace
}  // namespace qv5123
