#include "tuning/ui/dlg_isp_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/fake_page_host.h"
#include "support/page_driver.h"

namespace qv5123 {
namespace {

class MatrixPage : public testing::Test {
 protected:
  MatrixPage() {
    host_.page = &page_;
    page_.resize(900, 650);
  }
  QString patch(std::size_t i, const char* colour) { return QString("%1 %2").arg(kPatchCaptions[i], colour); }
  void type_patch(std::size_t i, int r, int g, int b) {
    drive_.type(patch(i, "R"), r);
    drive_.type(patch(i, "G"), g);
    drive_.type(patch(i, "B"), b);
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
        texts.push_back(drive_.text(QString("%1 from %2").arg(row, column)));
    }
    return texts;
  }
  /// Plays a chip whose picker reads 10, 20, 30.
  void answer_reads() {
    wire_.sender.chip = [this](const std::string& bytes) {
      if (bytes == "@940c*@943d*") wire_.receive("~0a^");
      if (bytes == "@940c*@943e*") wire_.receive("~14^");
      if (bytes == "@940c*@943f*") wire_.receive("~1E^");
      if (bytes == "@940a*@9429*") wire_.receive("~05^");
    };
  }
  bool enabled(const QString& name) { return drive_.find<QWidget>(name)->isEnabled(); }

  test::FakeWire wire_;
  test::FakePageHost host_{wire_};
  CDlgIspMatrix page_{host_};
  test::PageDriver drive_{page_};
};

const std::vector<QString> kIdentity = {"0x0400", "0x0000", "0x0000", "0x0000", "0x0400",
                                        "0x0000", "0x0000", "0x0000", "0x0400"};

TEST_F(MatrixPage, MeasuresPatchAfterPatch) {
  answer_reads();
  drive_.expect_named_controls();
  EXPECT_FALSE(enabled("GET COLOR"));
  drive_.click("Input Manually");
  EXPECT_TRUE(enabled(patch(9, "B")));
  drive_.click("Enable Color Picker");
  EXPECT_FALSE(drive_.checked("Input Manually"));
  EXPECT_FALSE(enabled(patch(9, "B")));
  EXPECT_TRUE(enabled(patch(0, "B")));
  EXPECT_FALSE(enabled("GET COLOR")) << "not before the chip has followed";
  wire_.advance(3000);
  EXPECT_EQ(wire_.sender.wire(),
            "@940a*@9429*@920a*@9220*@9380*@920a*@9229*@9385*@a000*@a100*"
            "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*@93c0*");
  EXPECT_EQ(host_.last_status(),
            "Start color capture. Please click direction button to move cursor on screen.");

  drive_.click(kPatchCaptions[4]);
  drive_.type("Patch Step", 100);
  auto* get_color = drive_.find<QPushButton>("GET COLOR");
  get_color->setFocus();
  wire_.sender.writes.clear();
  drive_.type("X Pos", 0x3C1);
  get_color->click();
  wire_.advance(400);
  EXPECT_TRUE(wire_.sender.wire().starts_with("@920c*@9238*@9303*@920c*@9239*@93c1*@940c*@943d*"))
      << "not before the cursor is there";
  EXPECT_FALSE(enabled("RIGHT"));
  EXPECT_EQ(page_.focusWidget()->focusPolicy(), Qt::NoFocus) << "no other control gets the next key";
  wire_.advance(2000);
  EXPECT_EQ(page_.focusWidget(), get_color);
  EXPECT_EQ(drive_.number(patch(4, "R")), 10);
  EXPECT_EQ(drive_.number(patch(4, "B")), 30);
  EXPECT_TRUE(drive_.checked(kPatchCaptions[5]));
  EXPECT_TRUE(enabled(patch(5, "G")));
  EXPECT_EQ(drive_.number("X Pos"), 1061);

  wire_.sender.chip = nullptr;
  drive_.click("GET COLOR");
  wire_.advance(2000);
  EXPECT_EQ(host_.last_status(), "GET COLOR: the chip did not answer.");
  EXPECT_EQ(drive_.number(patch(5, "R")), 0);
}

TEST_F(MatrixPage, CalculatesOnlyWithGrey) {
  drive_.click("Calculate");
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "Please get color of gray!");

  type_chart();
  auto* swatches = drive_.find<PatchSwatchView>("Patches");
  EXPECT_TRUE(swatches->summary().startsWith("CIEDE2000:   mean "));
  drive_.click("Calculate");
  // Rounding of the counts and truncation of the codes leave a unit or two.
  for (std::size_t i = 0; i < 9; ++i) {
    const int code = codes()[i].toInt(nullptr, 16);
    const int wanted = i % 4 == 0 ? 0x400 : 0;
    EXPECT_LE(std::abs((code >= 0x1000 ? code - 0x2000 : code) - wanted), 40) << i;
  }
  EXPECT_TRUE(swatches->text_at(swatches->cell(14).center()).startsWith("Red(R,G,B): CIEDE2000 "));
  drive_.type("Correction Ratio", 0);
  drive_.click("Calculate");
  EXPECT_EQ(codes(), kIdentity);

  drive_.click("Clear");
  EXPECT_EQ(drive_.number(patch(0, "R")), 0);
  EXPECT_EQ(codes(), std::vector<QString>(9));
  EXPECT_EQ(swatches->summary(), "");
}

TEST_F(MatrixPage, SetDerivesStoresAndSendsARow) {
  drive_.type("R from R", QString("0x0500"));
  drive_.type("R from B", QString("1F00"));
  drive_.click("Light-2");
  EXPECT_EQ(codes(), std::vector<QString>(9, "0x0000")) << "the other light source's own";
  drive_.choose("Video Mode", 3);
  drive_.type("R from R", QString("0x0500"));
  drive_.type("R from B", QString("1F00"));
  page_.chosen_again();
  drive_.click("Row R Set");
  EXPECT_EQ(codes()[1], "0x0000") << "1 - 1.25 + 0.25";
  EXPECT_EQ(codes()[5], "0x0400");
  wire_.advance(1000);
  EXPECT_EQ(wire_.sender.writes, (std::vector<std::string>{"@4e02*", "@ca03*", "@5805*", "@5800*", "@5800*",
                                                           "@5800*", "@58ff*", "@5800*"}));

  wire_.sender.writes.clear();
  drive_.type("G from R", QString("0x2000"));
  drive_.click("Row G Set");
  wire_.advance(1000);
  EXPECT_TRUE(wire_.sender.writes.empty());
  EXPECT_NE(host_.last_status().find("G from R takes 0x0000..0x1FFF"), std::string::npos);
  page_.save_to_user_data();
  EXPECT_EQ(host_.doc.user_data.word(635 + 36), 0x500);
  EXPECT_EQ(host_.doc.user_data.word(635 + 36 + 4), 0xFF00);
}

TEST_F(MatrixPage, LoadsFromTheChipOrSaysThatItFailed) {
  std::string reply(432, '0');
  reply.replace(0, 2, "1f").replace(6, 2, "80");  // TVI, row R, Outdoor: high and low byte of the first
  drive_.click("Load <- ISP");
  wire_.advance(100);
  EXPECT_EQ(wire_.sender.wire(), "@6a00*");
  wire_.receive("~" + reply + "^");
  wire_.advance(300);
  EXPECT_EQ(codes()[0], "0x1F80");
  EXPECT_TRUE(host_.statuses.empty());

  drive_.click("Load <- ISP");
  wire_.advance(100);
  wire_.receive("~00^");
  wire_.advance(2000);
  EXPECT_EQ(host_.last_status(), "ISP Load Fail...");
  EXPECT_EQ(codes()[0], "0x1F80");
}

TEST_F(MatrixPage, SavesAllMatricesAndEndsTheCapture) {
  answer_reads();
  for (std::size_t i = 0; i < 54; ++i) host_.doc.user_data.set_entry(382 + i, static_cast<int>(i));
  drive_.click("Load <- File");
  EXPECT_EQ(host_.last_status(), "Load File ok");
  drive_.click("Enable Color Picker");
  wire_.advance(3000);
  wire_.sender.writes.clear();
  drive_.click("File/Flash Save");
  EXPECT_EQ(host_.last_status(), "CCM Data Saving... Please wait");
  EXPECT_EQ(host_.full_saves, 1);
  wire_.advance((4 + 4 * 55) * 50);
  const std::vector<std::string>& writes = wire_.sender.writes;
  ASSERT_GE(writes.size(), 4u + 4 * 55);
  EXPECT_EQ(std::vector<std::string>(writes.begin(), writes.begin() + 11),
            (std::vector<std::string>{"@f901*", "@fa01*", "@ca00*", "@5200*", "@5201*", "@5202*", "@5203*",
                                      "@5204*", "@5205*", "@5512*", "@5513*"}));
  EXPECT_EQ(writes[2 + 55], "@ca01*");
  EXPECT_EQ(writes[2 + 4 * 55], "@fa00*");
  EXPECT_EQ(writes[3 + 4 * 55], "@f900*");
  wire_.advance(2000);
  EXPECT_TRUE(
      wire_.sender.wire().ends_with("@f900*@940a*@9429*@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*"));
  EXPECT_FALSE(drive_.checked("Enable Color Picker"));
  EXPECT_TRUE(enabled("Enable Color Picker"));
  ASSERT_GE(host_.statuses.size(), 2u);
  EXPECT_EQ(host_.statuses[host_.statuses.size() - 2], "End color capture.");
  EXPECT_EQ(host_.last_status(), "Transfered Linear Matrix parameters to ISP. Enable color correction.");

  host_.write_succeeds = false;
  drive_.click("File/Flash Save");
  wire_.advance(20000);
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
    drive_.choose("Video Mode", mode);
    for (const char* light : {"Outdoor", "Light-1", "Light-2"}) drive_.click(light);
  }
  page_.chosen_again();
  host_.doc.user_data = {};
  page_.save_to_user_data();
  EXPECT_EQ(host_.doc.user_data, before);
}

TEST_F(MatrixPage, ThePickerStaysWhereASilentChipOrALostPortLeftIt) {
  drive_.click("Enable Color Picker");
  wire_.advance(3000);
  EXPECT_EQ(wire_.sender.wire(), "@940a*@9429*@940a*@9429*") << "nothing is made of no answer";
  EXPECT_EQ(host_.last_status(), "Color picker: no answer from 0xFA29");
  EXPECT_FALSE(drive_.checked("Enable Color Picker"));
  EXPECT_FALSE(enabled("GET COLOR"));

  answer_reads();
  drive_.click("Enable Color Picker");
  EXPECT_EQ(host_.busy.back(), true);
  wire_.advance(3000);
  EXPECT_EQ(host_.busy.back(), false);
  drive_.click("Enable Color Picker");
  wire_.advance(120);
  wire_.sender.connected = false;
  wire_.advance(3000);
  EXPECT_EQ(host_.last_status(), "Color picker: not all of it reached the chip");
  EXPECT_TRUE(drive_.checked("Enable Color Picker"));
  EXPECT_TRUE(enabled("GET COLOR"));
}

}  // namespace
}  // namespace qv5123
