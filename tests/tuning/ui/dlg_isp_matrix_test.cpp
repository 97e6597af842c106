#include "tuning/ui/dlg_isp_matrix.h"

#include <gtest/gtest.h>

#include "support/page_bench.h"
#include "support/traffic_text.h"

namespace qv5123 {
namespace {

class MatrixPage : public test::PageBench<CDlgIspMatrix> {
 protected:
  QString patch(std::size_t i, const char* colour) { return QString("%1 %2").arg(kPatchCaptions[i], colour); }
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

TEST_F(MatrixPage, MeasuresPatchAfterPatch) {
  answer_reads();
  user_.expect_named_controls();
  user_.click("Input Manually");
  EXPECT_TRUE(enabled(patch(9, "B")));
  user_.click("Enable Color Picker");
  EXPECT_FALSE(user_.checked("Input Manually"));
  EXPECT_FALSE(enabled(patch(9, "B")));
  EXPECT_FALSE(enabled("GET COLOR")) << "not before the chip has followed";
  EXPECT_EQ(wire(3000),
            "@940a*@9429*@920a*@9220*@9380*@920a*@9229*@9385*@a000*@a100*"
            "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*@93c0*");

  user_.click(kPatchCaptions[5]);
  user_.type("Patch Step", 100);
  auto* get_color = user_.find<QPushButton>("GET COLOR");
  get_color->setFocus();
  user_.type("X Pos", 0x3C1);
  get_color->click();
  EXPECT_TRUE(wire(400).starts_with("@920c*@9238*@9303*@920c*@9239*@93c1*@940c*@943d*"))
      << "not before the cursor is there";
  EXPECT_FALSE(enabled("RIGHT"));
  EXPECT_EQ(page_.focusWidget()->focusPolicy(), Qt::NoFocus) << "no other control gets the next key";
  fake_.advance(2000);
  EXPECT_EQ(page_.focusWidget(), get_color);
  EXPECT_EQ(user_.number(patch(5, "B")), 30);
  EXPECT_TRUE(user_.checked(kPatchCaptions[6]));
  EXPECT_EQ(user_.number("X Pos"), 461) << "the start of the next row";
  EXPECT_EQ(user_.number("Y Pos"), 640);

  user_.type("Y Pos", 650);
  user_.click("GET COLOR");
  user_.click(kPatchCaptions[9]);
  fake_.advance(2000);
  EXPECT_EQ(user_.number(patch(6, "B")), 30) << "the patch that was chosen as the button was pressed";
  EXPECT_EQ(user_.number(patch(9, "B")), 0);

  fake_.link.connection_changed();
  user_.click("GET COLOR");
  EXPECT_TRUE(host_.last_status().ends_with(kPickerChipWasAway)) << "its picker may be off";
}

TEST_F(MatrixPage, CalculatesOnlyWithGrey) {
  user_.click("Calculate");
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "Please get color of gray!");

  for (std::size_t i = 0; i < kPatches; ++i)
    for (const char* colour : {"R", "G", "B"}) user_.type(patch(i, colour), 100);
  auto* swatches = user_.find<PatchSwatchView>("Patches");
  EXPECT_TRUE(swatches->text_at(swatches->cell(14).center()).startsWith("Red(R,G,B): CIEDE2000 "));
  user_.type("Correction Ratio", 0);
  user_.click("Calculate");
  const std::vector<QString> identity{"0x0400", "0x0000", "0x0000", "0x0000", "0x0400",
                                      "0x0000", "0x0000", "0x0000", "0x0400"};
  EXPECT_EQ(codes(), identity);
  user_.type("Correction Ratio", 100);
  user_.click("Calculate");
  EXPECT_EQ(codes(), std::vector<QString>(9, "0x0000")) << "greys alone determine nothing";
  user_.type("R from R", QString("0x0500"));
  user_.click("Row R Set");
  EXPECT_EQ(codes()[1], "0x1F00") << "what stood there as 0 counts as 0";

  user_.click("Clear");
  EXPECT_EQ(codes(), std::vector<QString>(9));
  EXPECT_EQ(swatches->summary(), "");
}

TEST_F(MatrixPage, SetDerivesStoresAndSendsARow) {
  user_.click("Light-2");
  user_.choose("Video Mode", 3);
  user_.type("R from R", QString("0x0500"));
  user_.type("R from B", QString("1F00"));
  page_.chosen_again();
  user_.click("Row R Set");
  EXPECT_EQ(codes()[1], "0x0000") << "1 - 1.25 + 0.25";
  EXPECT_EQ(wire(), "@4e02*@ca03*@5805*@5800*@5800*@5800*@58ff*@5800*");
  user_.type("G from R", QString("0x2000"));
  user_.click("Row G Set");
  EXPECT_EQ(wire(), "");
  EXPECT_NE(host_.last_status().find("G from R takes 0x0000..0x1FFF"), std::string::npos);
}

TEST_F(MatrixPage, LoadsFromTheChip) {
  std::string reply(432, '0');
  reply.replace(0, 2, "1f").replace(6, 2, "80");  // TVI, row R, Outdoor: high and low byte of the first
  user_.click("Load <- ISP");
  answer_load(reply);
  EXPECT_EQ(wire(), "@6a00*");
  EXPECT_EQ(codes()[0], "0x1F80");
}

TEST_F(MatrixPage, SavesAllMatricesAndEndsTheCapture) {
  answer_reads();
  for (std::size_t i = 0; i < 54; ++i) host_.doc.user_data.set_entry(382 + i, static_cast<int>(i));
  user_.click("Load <- File");
  EXPECT_EQ(host_.last_status(), "Load File ok");
  user_.click("Enable Color Picker");
  wire(3000);
  user_.click("File/Flash Save");
  EXPECT_EQ(host_.last_status(), "CCM Data Saving... Please wait");
  MatrixValues loaded;
  reload_from_user_data(loaded, host_.doc.user_data);
  const std::string sent = wire(15000);
  EXPECT_TRUE(sent.starts_with(bytes_of(matrix_full_save(loaded))));
  EXPECT_TRUE(sent.ends_with("@f900*@940a*@9429*@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*"));
  EXPECT_FALSE(user_.checked("Enable Color Picker"));
  EXPECT_EQ(host_.last_status(), "Transfered Linear Matrix parameters to ISP. Enable color correction.");
}

}  // namespace
}  // namespace qv5123
