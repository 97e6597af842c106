#include "tuning/ui/dlg_isp_matrix.h"

#include <gtest/gtest.h>

#include <QtWidgets>

#include "support/chart_driver.h"
#include "support/chart_readings.h"
#include "support/page_bench.h"

namespace qv5123 {
namespace {

class MatrixPage : public test::PageBench<CDlgIspMatrix> {
 protected:
  QString patch(std::size_t i, const char* colour) { return QString("%1 %2").arg(kPatchCaptions[i], colour); }
  std::vector<QString> codes() {
    std::vector<QString> texts;
    for (const auto& row : kMatrixCodeNames)
      for (const char* name : row) texts.push_back(user_.text(name));
    return texts;
  }
  void type_patches(const MeasuredColours& counts) {
    for (std::size_t i = 0; i < kPatches; ++i)
      for (std::size_t c = 0; c < 3; ++c)
        user_.type(patch(i, std::array{"R", "G", "B"}[c]), static_cast<int>(counts[i][c]));
  }
  QString caption(const QString& name) { return user_.find<QPushButton>(name)->text().remove('&'); }
  bool enabled(const QString& name) { return user_.find<QWidget>(name)->isEnabled(); }
  bool marked(const QString& name) {
    return user_.find<QLineEdit>(name)->palette().color(QPalette::Text) == QColor(Qt::white);
  }
};

TEST_F(MatrixPage, EnablesWhatCanBeUsed) {
  answer_picker();
  user_.expect_named_controls();
  user_.toggle("Input Manually");
  EXPECT_TRUE(enabled(patch(9, "B")));
  user_.toggle("Enable Color Picker");
  EXPECT_FALSE(user_.checked("Input Manually"));
  EXPECT_FALSE(enabled(patch(9, "B")));
  EXPECT_FALSE(enabled("GET COLOR")) << "not before the chip has followed";
  EXPECT_TRUE(wire(3000).starts_with("@940a*@9429*@920a*@9220*@9380*")) << "toggled is as good as clicked";

  user_.toggle(kPatchCaptions[5]);
  EXPECT_TRUE(enabled(patch(5, "B")));
  user_.type("Patch Step", 100);
  auto* get_color = user_.find<QPushButton>("GET COLOR");
  get_color->setFocus();
  get_color->click();
  fake_.advance(100);
  EXPECT_FALSE(enabled("RIGHT"));
  EXPECT_EQ(get_color->text(), "GET COLOR ...");
  fake_.advance(2000);
  EXPECT_EQ(get_color->text(), "GET COLOR");
  EXPECT_EQ(page_.focusWidget(), get_color) << "no other control gets the next key";
  EXPECT_EQ(user_.number(patch(5, "B")), 30);
  EXPECT_TRUE(user_.checked(kPatchCaptions[6]));
  EXPECT_EQ(user_.number("X Pos"), 460) << "the start of the next row";
}

TEST_F(MatrixPage, ShowsWhatIsCalculatedAndCleared) {
  MeasuredColours greys;
  greys.fill({100, 100, 100});
  type_patches(greys);
  auto* swatches = user_.find<PatchSwatchView>("Patches");
  EXPECT_TRUE(swatches->text_at(swatches->cell(14).center()).startsWith("Red(R,G,B): CIEDE2000 "));
  EXPECT_EQ(test::copied(swatches), swatches->numbers());
  user_.type("Correction Ratio", 0);
  user_.click("Calculate");
  EXPECT_EQ(codes()[0], "0x0400");
  user_.click("Clear");
  EXPECT_EQ(codes(), std::vector<QString>(9));
  EXPECT_EQ(user_.number(patch(23, "B")), 0);
  EXPECT_EQ(swatches->summary(), "");
}

TEST_F(MatrixPage, AFitIsChosenByWhateverMeans) {
  type_patches(test::chart_readings("chart"));
  user_.click("Calculate");
  const std::vector<QString> calculated = codes();
  const QString text = page_.findChild<QLabel*>("what the patches tell")->text();
  EXPECT_TRUE(text.startsWith(QString("Codes:   R %1 -").arg(calculated[0].toInt(nullptr, 16))));
  static const QRegularExpression kPatches(
      "\nCondition 9\\.\\d\\.   CIEDE2000 of patches left out: mean 1\\.\\d, worst \\d\\.\\d\\.   Pull most: "
      "\\w");
  EXPECT_TRUE(kPatches.match(text).hasMatch()) << text.toStdString();
  user_.click("Fit color difference");
  fake_.advance(10);
  user_.toggle("Use Color difference");
  EXPECT_NE(codes(), calculated);
  for (int times = 0; times < 2; ++times) {
    user_.toggle("Use Calculate");
    EXPECT_EQ(codes(), calculated);
    EXPECT_TRUE(user_.checked("Use Calculate"));
    EXPECT_FALSE(user_.checked("Use Color difference"));
  }
}

TEST_F(MatrixPage, SetsRowsOfTheChosenLightAndMode) {
  host_.doc.user_data.set_word(635 + 36, 0x500);
  user_.click("Load <- File");
  user_.toggle("Light-2");
  user_.choose("Video Mode", 3);
  EXPECT_EQ(codes()[0], "0x0500");
  // As assistive technology sets a text.
  user_.find<QLineEdit>("R from B")->setText("1F00");
  page_.chosen_again();
  EXPECT_FALSE(marked("R from B"));
  user_.click("Row R Set");
  EXPECT_EQ(wire(), "@4e02*@ca03*@5805*@5800*@5800*@5800*@58ff*@5800*");
  user_.find<QLineEdit>("G from R")->setText("0x2000");
  EXPECT_TRUE(marked("G from R"));
  EXPECT_TRUE(user_.find<QPushButton>("File/Flash Save")->toolTip().contains("registers 0x52 to 0x5A"));
}

TEST_F(MatrixPage, CopiesToThePlacesThatWereChosen) {
  user_.choose("Video Mode", 1);
  for (const char* name : {"R from R", "G from G", "B from B"})
    user_.find<QLineEdit>(name)->setText("0x0400");
  user_.click("Copy matrix to...");
  EXPECT_FALSE(enabled("AHD Outdoor")) << "it is there already";
  user_.find<QCheckBox>("CVBS Light-2")->setChecked(true);
  page_.findChild<QDialog*>()->accept();
  EXPECT_TRUE(wire(3000).starts_with("@4e02*@ca03*@5804*@5800*@5800*@5800*@5800*@5800*"));
  user_.choose("Video Mode", 3);
  user_.toggle("Light-2");
  EXPECT_EQ(codes()[4], "0x0400");
}

TEST_F(MatrixPage, CountsThePatchesThatAreLeft) {
  answer_picker();
  user_.click("Enable Color Picker");
  fake_.advance(3000);
  for (const auto& [x, y] : {std::pair(100, 100), {1100, 100}, {1100, 700}, {100, 700}}) {
    user_.type("X Pos", x);
    user_.type("Y Pos", y);
    fake_.advance(2000);
    user_.click("Set corner");
  }
  EXPECT_EQ(caption("Set corner"), "Set corner (4 of 4)");
  user_.click("Measure all 24");
  fake_.advance(100);
  EXPECT_EQ(caption("Measure all 24"), "Stop (24 left)");
}

}  // namespace
}  // namespace qv5123
