#include "tuning/awb.h"

#include <gtest/gtest.h>

#include <random>

#include "support/traffic_text.h"
#include "tuning/awb_chart.h"

namespace qv5123 {
namespace {

// Words with a distinct high and low byte each: 0x0102, 0x0203, ..., and two negative ones.
AwbValues example() {
  AwbValues values;
  values.words = {0x0102, 0x0203, -2, -800, 800, 0x0105, 0x0106, 0x0107, 0x0409, -32768};
  for (int k = 0; k < 24; ++k) values.patches[k] = {k, 100 + k, 200 + k};
  return values;
}

TEST(Awb, FullSaveOnTheWire) {
  EXPECT_EQ(on_wire(awb_save_traffic(example())),
            "@f901*|@fa01*|@0d01*@0d02*|@0e02*@0e03*|@0fff*@0ffe*|@10fc*@10e0*|@1103*@1120*|@1201*@1205*|"
            "@1301*@1306*|@1401*@1407*|@1504*@1509*|@1680*@1600*|@fa00*|@f900*|");
}

TEST(Awb, RowsAreLimitedWhenSetButEAndFAreNot) {
  AwbValues values;
  values.words.fill(900);
  values.words[1] = -900;
  for (const AwbRow& row : kAwbRows) limit_awb_row(values, row);
  EXPECT_EQ(values.words, (std::array<int, 10>{800, -800, 800, 800, 800, 800, 800, 800, 900, 900}));
  EXPECT_EQ(on_wire(awb_row_traffic(values, kAwbRows[0])), "@fa01*|@0d03*@0d20*|@0efc*@0ee0*|@fa00*|");
  EXPECT_EQ(on_wire(awb_row_traffic(values, kAwbRows[3])), "@fa01*|@1303*@1320*|@1403*@1420*|@fa00*|");
  EXPECT_EQ(on_wire(awb_row_traffic(values, kAwbRows[5])), "@fa01*|@1603*@1684*|@fa00*|");
}

TEST(Awb, ReplyOfTenWords) {
  const std::string reply = "01020203fffefce0032001050106010704098000";
  const auto values = decode_awb_reply(reply, AwbValues{});
  ASSERT_TRUE(values);
  EXPECT_EQ(values->words, example().words);
  EXPECT_EQ(encode_awb_reply(*values), reply);
  EXPECT_FALSE(decode_awb_reply(reply.substr(0, 39), AwbValues{})) << "a half of the last word is no word";
  EXPECT_EQ(decode_awb_reply("0320"
                             "0321" +
                                 reply.substr(8),
                             AwbValues{})
                ->words[1],
            801 - 65536);
}

TEST(Awb, ImageEntries) {
  AwbValues values = example();
  values.patches[23] = {-1, 300, 7};
  UserDataImage image;
  save_to_user_data(values, image);
  EXPECT_EQ(image.entry(181), 0x01);
  EXPECT_EQ(image.entry(182), 0x02);
  EXPECT_EQ(image.entry(185), 0xFF);
  EXPECT_EQ(image.entry(197), 0x04);
  EXPECT_EQ(image.entry(200), 0x00);
  EXPECT_EQ(image.entry(213), 0);
  EXPECT_EQ(image.entry(213 + 3 * 5 + 2), 205);
  EXPECT_EQ(image.entry(282), 0);
  EXPECT_EQ(image.entry(283), 255);
  EXPECT_EQ(image.entry(284), 7);
  for (std::size_t i : {180, 201, 212, 285}) EXPECT_EQ(image.entry(i), 0) << i;

  AwbValues loaded;
  reload_from_user_data(loaded, image);
  EXPECT_EQ(loaded.words, (std::array<int, 10>{258, 515, -2, -800, 800, 261, 262, 263, 0x0409, -32768}));
  EXPECT_EQ(loaded.patches[23], (PatchColour{0, 255, 7}));
}

TEST(Awb, WhatIsSavedComesBackFromImageAndChip) {
  std::mt19937 random(42);
  std::uniform_int_distribution<int> word(-800, 800), any_word(-32768, 32767), byte(0, 255);
  for (int round = 0; round < 100; ++round) {
    AwbValues values;
    for (int& w : values.words) w = word(random);
    values.words[8] = any_word(random);
    values.words[9] = any_word(random);
    for (PatchColour& p : values.patches) p = {byte(random), byte(random), byte(random)};
    UserDataImage image;
    save_to_user_data(values, image);
    AwbValues loaded;
    reload_from_user_data(loaded, image);
    EXPECT_EQ(loaded, values);
    AwbValues patches_only;
    patches_only.patches = values.patches;
    EXPECT_EQ(decode_awb_reply(encode_awb_reply(values), patches_only), values);
  }
}

TEST(AwbChart, LinesLieWhereTheWordsPutThem) {
  AwbValues values;
  values.words = {256, 128, 0, 0, -256, 0, 0, 64, 128, -128};
  const auto lines = awb_chart_lines(values);
  EXPECT_EQ(lines[0].from.x, -160);
  EXPECT_NEAR(lines[0].from.y, 60, 1e-9) << "y = -0.8 + 0.5, downwards";
  EXPECT_NEAR(lines[0].to.x, 20, 1e-9);
  EXPECT_NEAR(lines[0].to.y, -120, 1e-9);
  EXPECT_EQ(lines[0].letter, (ChartPoint{-164, lines[0].from.y}));
  EXPECT_EQ(lines[2].letter, (ChartPoint{-165, -160}));
  EXPECT_EQ(lines[4].from, (ChartPoint{100, -60}));
  EXPECT_EQ(lines[4].to, (ChartPoint{100, 200}));
  EXPECT_EQ(lines[5].from, (ChartPoint{-200, 100}));
  EXPECT_EQ(lines[5].to, (ChartPoint{20, 100}));
}

TEST(AwbChart, PatchesWithoutLumaAreNotDrawn) {
  AwbValues values;
  values.patches[0] = {300, 0, 0};
  values.patches[18] = {128, 128, 128};
  values.patches[19] = {-5, 0, 0};
  const auto patches = awb_chart_patches(values);
  ASSERT_EQ(patches.size(), 2u);
  EXPECT_NEAR(patches[0].centre.x, 200 * -0.16797 / 0.296875, 1e-9) << "drawn as 255";
  EXPECT_NEAR(patches[0].centre.y, -200 * 0.5 / 0.296875, 1e-9);
  EXPECT_EQ(patches[0].side, 4);
  EXPECT_EQ(patches[1].row, 18u);
  EXPECT_NEAR(patches[1].centre.x, 0, 1e-2);
  EXPECT_EQ(patches[1].side, 6);
  EXPECT_EQ(patches[1].colour, (PatchColour{0, 0, 0}));
}

}  // namespace
}  // namespace qv5123
