#include "tuning/measuring_board.h"

#include <algorithm>

#include "base/hex.h"
#include "support/chart_readings.h"
#include "support/chip_desk_bench.h"
#include "support/traffic_text.h"
#include "tuning/awb_desk.h"
#include "tuning/lens_desk.h"

namespace qv5123 {
namespace {

constexpr char kReadBoth[] = "@940a*@9429*@940a*@9410*";
constexpr char kCorrectionBack[] = "@920a*@9210*@9313*";
constexpr char kOn[] =
    "@920a*@9220*@9380*@920a*@9229*@9385*@a000*@a100*"
    "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*@93c0*";
constexpr char kOff[] = "@940a*@9429*@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*";

constexpr test::CornerPlaces kCorners{{{100, 100}, {1100, 100}, {1100, 700}, {100, 700}}};

/// The three pages on a chip whose picker reads 10, 20, 30 everywhere.
class MeasuringBoardTest : public test::DeskBench {
 protected:
  MeasuringBoardTest() { answer_picker(); }

  std::shared_ptr<MeasuringBoard> board_ = std::make_shared<MeasuringBoard>();
  MatrixDesk matrix_{host_, host_.doc.user_data, board_};
  LensDesk lens_{host_, host_.doc.user_data, board_};
  AwbDesk awb_{host_, host_.doc.user_data, board_};
};

TEST_F(MeasuringBoardTest, APickerSwitchedOnOnePageIsOnOnAll) {
  matrix_.choose_manual_input(true);
  lens_.picker().click_switch(true);
  EXPECT_TRUE(matrix_.picker().on());
  EXPECT_FALSE(matrix_.picker().switch_enabled()) << "one switch at a time";
  EXPECT_EQ(switched(matrix_, false), std::string(kReadBoth) + "@920a*@9210*@9303*" + kOn);
  EXPECT_TRUE(matrix_.picker().keys_enabled());
  EXPECT_EQ(matrix_.typing(), MatrixDesk::Typing::chosen) << "switching on ends manual input, wherever";
  EXPECT_TRUE(awb_.picker().on());

  matrix_.picker().type_x(5);
  EXPECT_EQ(lens_.values().picker, (PickerPosition{5, 540}));
  matrix_.picker().type_x(960);
  wire();
  matrix_.get_color();
  EXPECT_EQ(wire(3000),
            std::string(kCorrectionBack) + "@940a*@9429*" + kOn + "@940c*@943d*@940c*@943e*@940c*@943f*")
      << "measured in the page's own way, behind the lens correction";
  matrix_.get_color();
  EXPECT_EQ(wire(), "@940c*@943d*@940c*@943e*@940c*@943f*");

  EXPECT_EQ(switched(awb_, false), kOff);
  EXPECT_FALSE(matrix_.picker().on());
  EXPECT_FALSE(lens_.values().picker_on);
  EXPECT_EQ(host_.last_status(), kPickerOffStatus);
}

TEST_F(MeasuringBoardTest, WhatEndsItElsewhereRestoresTheLensCorrection) {
  switched(lens_, true);
  EXPECT_EQ(switched(matrix_, false), std::string(kCorrectionBack) + kOff);

  switched(lens_, true);
  host_.user.answers = {Answer::yes};
  matrix_.start_save(host_.user, matrix_.save(host_));
  EXPECT_TRUE(wire(60000).ends_with("@fa00*@f900*" + std::string(kCorrectionBack) + kOff));
  EXPECT_FALSE(lens_.picker().on());

  switched(lens_, true);
  EXPECT_EQ(matrix_.leave().front(), (Batch{{0x92, 0x0A}, {0x92, 0x10}, {0x93, 0x13}}));
  EXPECT_TRUE(lens_.leave().empty()) << "said once";
  EXPECT_FALSE(awb_.picker().on());
}

TEST_F(MeasuringBoardTest, OthersKeysRestWhileAPageMovesTheCursor) {
  switched(lens_, true);
  lens_.start_calibration(host_.user);
  wire(500);
  EXPECT_FALSE(matrix_.picker().keys_enabled());
  EXPECT_TRUE(matrix_.picker().switch_enabled()) << "it ends the sweep";
  EXPECT_TRUE(board_->move_to({1, 2}));
  EXPECT_EQ(host_.last_status(), "The cursor stays: it is being moved by a measurement.");
  awb_.get_color();
  EXPECT_EQ(host_.last_status(), "GET COLOR: the cursor is being moved by a measurement.");
  switched(matrix_, false, 5000);
  EXPECT_FALSE(lens_.calibrating());
  EXPECT_FALSE(matrix_.picker().keys_enabled());
  EXPECT_TRUE(board_->move_to({7, 2}));
  EXPECT_EQ(wire(), "") << "switching on brings it there";
  EXPECT_EQ(awb_.picker().position(), (PickerPosition{7, 2}));
  switched(awb_, true);
  board_->move_to({7, 3});
  EXPECT_EQ(wire(), "@920c*@923a*@9300*@920c*@923b*@9303*@920c*@9238*@9300*@920c*@9239*@9307*");
}

TEST_F(MeasuringBoardTest, NothingIsMeasuredWhereTheCursorIsNotThere) {
  const auto chip = fake_.sender.chip;
  const std::string read = "@940c*@943d*@940c*@943e*@940c*@943f*";
  matrix_.picker().click_switch(true);
  matrix_.get_color();
  EXPECT_EQ(wire(5000), std::string("@940a*@9429*") + kOn + read) << "not before the chip has followed";
  switched(matrix_, false);

  switched(lens_, true);
  matrix_.choose_patch_step(100);
  lens_.start_calibration(host_.user);
  matrix_.choose_patch(7);
  EXPECT_EQ(matrix_.picker().position(), (PickerPosition{960, 540})) << "a sweep has the cursor";
  matrix_.get_color();
  matrix_.get_color();
  EXPECT_TRUE(switched(awb_, false, 5000).ends_with(kOff)) << "switched off while it waited";
  EXPECT_FALSE(matrix_.measuring());

  switched(lens_, true);
  fake_.sender.chip = {};
  matrix_.get_color();
  matrix_.get_color();
  EXPECT_EQ(wire(3000), std::string(kCorrectionBack) + "@940a*@9429*@940a*@9429*");
  EXPECT_EQ(host_.last_status(), "Color picker: no answer from 0xFA29");
  switched(matrix_, false);
  EXPECT_TRUE(matrix_.picker().on()) << "the chip did not follow";
  EXPECT_EQ(bytes_of(matrix_.leave()),
            std::string(kCorrectionBack) + "@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*")
      << "each once";

  fake_.sender.chip = chip;
  switched(matrix_, true);
  fake_.sender.connected = false;
  matrix_.picker().type_x(5);
  wire();
  matrix_.get_color();
  wire();
  EXPECT_EQ(host_.last_status(), "Picker position: not all of it reached the chip");
  fake_.sender.connected = true;
  matrix_.get_color();
  EXPECT_TRUE(
      wire(3000).starts_with("@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9300*@920c*@9239*@9305*"
                             "@940c*@943d*"))
      << "brought there anew";
}

TEST_F(MeasuringBoardTest, CheckFieldIsSeenAndEndedByTheOthers) {
  lens_.press_check_field();
  wire(4000);
  ASSERT_GT(lens_.picture().size(), 0u);
  EXPECT_TRUE(matrix_.picker().on());
  EXPECT_FALSE(matrix_.picker().keys_enabled());
  EXPECT_FALSE(matrix_.picker().switch_enabled()) << "it will switch it off by itself";
  host_.user.answers = {Answer::yes};
  matrix_.start_save(host_.user, matrix_.save(host_));
  const std::string sent = wire(60'000);
  EXPECT_FALSE(lens_.checking_field());
  EXPECT_LT(lens_.picture().size(), kFieldPlaces);
  EXPECT_NE(std::ranges::find(host_.statuses, "Check field: the color picker was switched off."),
            host_.statuses.end());
  EXPECT_TRUE(sent.ends_with(kOff)) << sent.substr(sent.size() - 200);
  EXPECT_FALSE(awb_.picker().on());
  EXPECT_TRUE(lens_.leave().empty());
}

TEST_F(MeasuringBoardTest, AwbGoesOnFromPatchToPatch) {
  awb_.choose_patch(22);
  awb_.get_color();
  awb_.get_color();
  awb_.get_color();
  EXPECT_EQ(host_.last_status(), "GET COLOR: 2 more to come.");
  wire(2000);
  for (const std::size_t patch : {22, 23, 0})
    EXPECT_EQ(awb_.values().patches[patch], (PatchColour{10, 20, 30})) << patch;
  EXPECT_EQ(awb_.patch(), 1u);
  awb_.choose_advance(false);
  awb_.get_color();
  wire(2000);
  EXPECT_EQ(awb_.patch(), 1u);

  awb_.take_from_matrix();
  EXPECT_EQ(host_.last_status(), "From LinearMatrix: none of the 18 colors is measured there.");
  MeasuredColours counts = test::chart_readings("chart");
  counts[4] = {};
  counts[5] = {1, 2, 300};
  test::type_patches(matrix_, counts);
  awb_.take_from_matrix();
  EXPECT_EQ(host_.last_status(), "From LinearMatrix: 17 of 18 colors taken over.");
  EXPECT_EQ(awb_.values().patches[4], PatchColour{}) << "not measured there either";
  EXPECT_EQ(awb_.values().patches[5], (PatchColour{1, 2, 255}));
  EXPECT_EQ(awb_.values().patches[18], PatchColour{}) << "whites are no patches of the chart";
}

TEST_F(MeasuringBoardTest, AwbMeasuresItsColorsFromTheCorners) {
  const MeasuredColours counts = test::chart_readings("chart");
  MeasuredColours shown = counts;
  std::string asked;
  std::size_t patch = 0;
  fake_.sender.chip = [&](const std::string& bytes) {
    if (bytes == "@940a*@9429*") fake_.receive("~05^");
    constexpr const char* kAsked[] = {"@940c*@9492*", "@940c*@9496*", "@940c*@949a*"};
    if (bytes.starts_with("@920c*@923a*")) patch = patch == 0 && asked.empty() ? 0 : patch + 1;
    for (std::size_t c = 0; c < 3; ++c) {
      if (bytes != kAsked[c]) continue;
      asked = bytes;
      fake_.receive("~" + lower_hex(shown[patch][c]) + "^");
    }
  };
  awb_.measure_all();
  EXPECT_EQ(host_.last_status(), "Measure 18: enable the color picker first, and wait for GET COLOR.");
  switched(awb_, true);
  awb_.measure_all();
  EXPECT_EQ(host_.last_status(),
            "Measure 18: the chart's four corners are set on LinearMatrix, and are not yet.");
  test::set_corners(matrix_, fake_, kCorners);
  patch = 0;
  asked.clear();
  awb_.measure_all();
  EXPECT_TRUE(awb_.measuring_all());
  wire(30000);
  EXPECT_FALSE(awb_.measuring_all());
  EXPECT_EQ(host_.last_status().find("Measured Cyan is "), 0u) << host_.last_status();
  EXPECT_EQ(awb_.values().patches[17].g, static_cast<int>(counts[17][1]));
  EXPECT_EQ(awb_.picker().position(), (PickerPosition{1100, 500})) << "the third row's end";

  shown[4] = {255, 255, 255};
  patch = 0;
  asked.clear();
  awb_.measure_all();
  wire(30000);
  EXPECT_EQ(
      host_.last_status(),
      "Measure 18 stopped. Blue flower is clipped: it reads 255. GET COLOR measures it anew, and the rest "
      "follows.");
  shown = counts;
  awb_.get_color();
  EXPECT_TRUE(awb_.picker().measuring());
  wire(30000);
  EXPECT_EQ(awb_.values().patches[4].r, static_cast<int>(counts[4][0]));
  EXPECT_EQ(host_.last_status().find("Measured Cyan is "), 0u) << host_.last_status();
}

TEST_F(MeasuringBoardTest, PointingAtTheFourCornersSetsThem) {
  board_->move_to({1, 1});
  EXPECT_FALSE(matrix_.corners()[0]) << "nothing is measured yet";
  switched(matrix_, true);
  for (const PickerPosition& corner : kCorners) {
    board_->move_to(corner);
    wire();
  }
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(matrix_.corners()[i], kCorners[i]) << i;
  const ChartCorners set = matrix_.corners();
  board_->move_to({5, 6});
  EXPECT_EQ(matrix_.corners(), set) << "from now on by Set corner";
  EXPECT_EQ(matrix_.picker().position(), (PickerPosition{5, 6}));
  matrix_.measure_all();
  EXPECT_TRUE(matrix_.measuring_all());
}

TEST_F(MeasuringBoardTest, AnotherVideoModeThanTheChipsIsSaid) {
  image().set_entry(454, 2);  // an item of "Video Mode"
  image().mark_loaded();
  test::type_patches(matrix_, test::chart_readings("chart"));
  matrix_.calculate(host_.user);
  const std::string other =
      "The chip's video mode is 2M PAL A_25fps: it uses the matrix of AHD, and this is that of TVI.";
  EXPECT_EQ(host_.last_status(), other);
  wire();
  host_.user.answers = {Answer::no};
  matrix_.set_row(MatrixControl::red_row, host_.user);
  EXPECT_EQ(wire(), "");
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_EQ(host_.user.questions[0].text.find(other), 0u);

  board_->known_video_mode = [] { return 8; };
  matrix_.choose_mode(kAhd);
  matrix_.calculate(host_.user);
  EXPECT_EQ(host_.last_status(), "Matrix calculated from 24 patches.") << "what the chip said counts more";
  const std::string other_size =
      "The chip's video mode is 1M PAL A_25fps: its lines have 1280 pixels, and Screen Size says 1920.";
  lens_.press_check_field();
  EXPECT_EQ(host_.last_status(), other_size);
  lens_.press_check_field();
  wire(5000);
  switched(lens_, true);
  lens_.start_calibration(host_.user);
  EXPECT_EQ(host_.last_status(), other_size);
}

}  // namespace
}  // namespace qv5123
