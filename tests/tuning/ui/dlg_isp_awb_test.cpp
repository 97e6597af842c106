#include "tuning/ui/dlg_isp_awb.h"

#include <gtest/gtest.h>

#include "support/page_bench.h"

namespace qv5123 {
namespace {

using AwbPage = test::PageBench<CDlgIspAwb>;

TEST_F(AwbPage, SetLimitsTheRowAndSendsItKeptAndKeysSendOneWriteEach) {
  user_.expect_named_controls();
  user_.type("A Slope", 900);
  user_.type("A Intercept", -2);
  user_.click("A S");
  EXPECT_EQ(user_.number("A Slope"), 800);
  for (const char* key : {"None", "Set", "Check", "UP", "DOWN", "LEFT", "RIGHT"}) user_.click(key);
  user_.type("F Intercept", -40000);
  user_.click("F S");
  EXPECT_EQ(user_.number("F Intercept"), -32768);
  EXPECT_EQ(wire(),
            "@fa01*@0d03*@0d20*@0eff*@0efe*@fa00*@3200*@3300*@3400*@0100*@0101*@0102*@0103*"
            "@fa01*@1680*@1600*@fa00*");
}

TEST_F(AwbPage, TheChipsLinesFillThePageAndAreSavedAsTheyCame) {
  user_.type("A Slope", 7);
  user_.click("Load <- ISP");
  answer_load("01020203fffefce0032101050106010704098000");
  EXPECT_EQ(wire(), "@3600*");
  EXPECT_EQ(host_.last_status(), "Load Isp Ok.");
  EXPECT_EQ(user_.number("A Slope"), 0x102);
  EXPECT_EQ(user_.number("C Slope"), 0x321 - 65536) << "beyond the limit";
  EXPECT_EQ(user_.number("F Intercept"), -32768);

  user_.click("File/Flash Save");
  user_.click("File/Flash Save");
  EXPECT_EQ(wire(),
            "@f901*@fa01*@0d01*@0d02*@0e02*@0e03*@0fff*@0ffe*@10fc*@10e0*@1103*@1121*@1201*@1205*@1301*@1306*"
            "@1401*@1407*@1504*@1509*@1680*@1600*@fa00*@f900*");
  EXPECT_EQ(fake_.sender.writes.size(), 1u + 14) << "each word in a flush of its own, and one save only";
  EXPECT_EQ(host_.last_status(), "AWB Data Save Done.");
}

TEST_F(AwbPage, MeasuredColourBecomesTheSelectedPatch) {
  fake_.sender.chip = [this](const std::string& bytes) {
    if (bytes == "@940c*@9492*") fake_.receive("~a0^");
    if (bytes == "@940c*@9496*") fake_.receive("~B1^");
    if (bytes == "@940c*@949a*") fake_.receive("~c2^");
  };
  user_.click("4100K");
  user_.click("GET COLOR");
  EXPECT_EQ(wire(), "@940c*@9492*@940c*@9496*@940c*@949a*");
  EXPECT_EQ(user_.number("4100K R"), 0xA0);
}

TEST_F(AwbPage, TheChartFollowsTheEditsAndNamesItsPatches) {
  page_.show();
  user_.type("Green R", 300);
  const auto place = chroma_over_luma({255, 0, 0});
  const auto& chart = *page_.findChild<AwbChartView*>();
  const QPointF at = chart.to_widget({200 * place->x, -200 * place->y});
  EXPECT_EQ(chart.text_at(at), "Green: R 300, G 0, B 0\nCb/Y = -0.566, Cr/Y = 1.684");
  EXPECT_EQ(chart.text_at(at + QPointF(40, 0)), "");
}

}  // namespace
}  // namespace qv5123
