#include "state/undo_list.h"

#include <gmock/gmock.h>

#include "support/chip_desk_bench.h"
#include "tuning/awb_desk.h"
#include "tuning/gamma_desk.h"
#include "tuning/lens_desk.h"

namespace qv5123 {
namespace {

class UndoListTest : public test::DeskBench {
 protected:
  UndoListTest() {
    lens_.watch(states_);
    gamma_.watch(states_);
  }
  int red1() { return lens_.values().parameter1[0]; }
  void undo() {
    undo_.undo();
    fake_.advance(2000);
  }
  void redo() {
    undo_.redo();
    fake_.advance(2000);
  }
  /// With the pauses of somebody who thinks.
  void type(TuningDesk& desk, std::size_t field, int number) {
    desk.type(field, number);
    fake_.advance(2000);
  }

  ValueStates states_{fake_.link};
  std::vector<std::string> said_;
  UndoList undo_{states_, fake_.scheduler, [this](const std::string& text) { said_.push_back(text); }, [] {}};
  LensDesk lens_{host_, image()};
  GammaDesk gamma_{host_, image(), host_.doc.front_gamma_level};
};

TEST_F(UndoListTest, TakesBackWhatWasNotSentWithoutTraffic) {
  type(lens_, 0, 11);
  type(lens_, 0, 22);
  type(gamma_, 1, 33);
  undo();
  EXPECT_EQ(said_.back(), "Undone: Point 1 R");
  EXPECT_EQ(gamma_.values().curves[0][0], 0);
  undo();
  EXPECT_EQ(red1(), 11);
  EXPECT_EQ(undo_.next_redo(), "Parameter-1 RED");
  redo();
  EXPECT_EQ(red1(), 22);
  undo();
  type(lens_, 3, 5);
  EXPECT_EQ(undo_.next_redo(), "") << "what was taken back is gone";
  undo();
  undo();
  undo();
  EXPECT_EQ(red1(), 0);
  EXPECT_EQ(undo_.next_undo(), "");
  EXPECT_EQ(wire(), "");
}

TEST_F(UndoListTest, OneDragAndOneSlideIsOneStep) {
  const GammaHit point{3, {GammaCurveId::red}};
  for (int value = 100; value < 110; ++value) {
    gamma_.drag(point, value);
    fake_.advance(3000);
  }
  gamma_.end_drag();
  gamma_.drag(point, 500);
  EXPECT_EQ(undo_.size(), 2u);
  for (int i = 0; i < 10; ++i) {
    lens_.type(0, i);
    fake_.advance(100);
  }
  EXPECT_EQ(undo_.size(), 3u);
  lens_.send_row(LensControl::parameter1);
  fake_.advance(100);
  lens_.type(0, 90);
  EXPECT_EQ(undo_.size(), 4u) << "what was sent in between is another state";
  undo();
  undo();
  undo();
  EXPECT_EQ(gamma_.values().curves[0][3], 109);
}

TEST_F(UndoListTest, SendsWhatHadBeenSentInTheSameWay) {
  type(lens_, 0, 0x11);
  lens_.send_row(LensControl::parameter1);
  type(lens_, 3, 0x22);
  wire();
  undo();
  EXPECT_EQ(wire(), "") << "the other row had not been sent";
  undo();
  const std::string row = "@6400*@6400*@6400*@6400*@6400*@6400*";
  EXPECT_EQ(wire(), row);
  EXPECT_EQ(host_.last_status(), "Undone: Parameter-1 RED: 1 register sent");
  // Faster than the line.
  undo_.redo();
  undo_.undo();
  EXPECT_EQ(wire(), "@6400*@6411*@6400*@6400*@6400*@6400*" + row);
  EXPECT_EQ(red1(), 0);

  type(lens_, 0, 0x33);
  host_.user.answers = {Answer::yes};
  lens_.start_save(host_.user, lens_.save(host_));
  wire(3000);
  undo();
  EXPECT_EQ(wire(), "@f901*@fa01*" + row + "@fa00*@f900*") << "the chip is to keep it";
}

TEST_F(UndoListTest, WhatOnlyAFullSaveSendsIsTakenBackInThePageAlone) {
  const auto save = [this] {
    host_.user.answers = {Answer::yes};
    gamma_.start_save(host_.user, gamma_.save());
    EXPECT_THAT(wire(60'000), testing::HasSubstr("@f901*"));
  };
  gamma_.choose_channel(GammaChannel::blue);
  save();
  undo();
  EXPECT_EQ(gamma_.values().channel, GammaChannel::rgb);
  EXPECT_EQ(wire(), "");
  EXPECT_EQ(host_.last_status(), "Gamma Save Done.") << "nothing was sent for the chip to keep";

  type(gamma_, 1, 33);
  save();
  undo();
  EXPECT_THAT(wire(), testing::HasSubstr("@f901*")) << "a point is sent by its curve";
}

TEST_F(UndoListTest, AClearIsAStepAndChoosingALightIsNone) {
  MatrixDesk matrix(host_, image());
  matrix.watch(states_);
  matrix.type_patch(2, 0, 200);
  matrix.choose_light(2);
  matrix.choose_light(0);
  matrix.clear();
  EXPECT_EQ(matrix.values().measured[2][0], 0u);
  undo();
  EXPECT_EQ(matrix.values().measured[2][0], 200u);
  undo();
  EXPECT_EQ(matrix.values().measured[2][0], 0u);
  EXPECT_EQ(undo_.next_undo(), "");
}

/// On a simulated chip whose lens and chart are measured.
class UndoOfMeasurementsTest : public test::OnAChip<UndoListTest> {
 protected:
  UndoOfMeasurementsTest() {
    matrix_.watch(states_);
    awb_.watch(states_);
  }
  void calibrate(Answer answer) {
    host_.user.answers = {answer};
    switched(lens_, true, 5000);
    lens_.start_calibration(host_.user);
    wire(60'000);
  }

  std::shared_ptr<MeasuringBoard> board_ = std::make_shared<MeasuringBoard>();
  MatrixDesk matrix_{host_, image(), board_};
  AwbDesk awb_{host_, image(), board_};
};

TEST_F(UndoOfMeasurementsTest, ACalibrationTakenBackIsTakenBackOnTheChip) {
  aim("flat-cos4", "off");
  type(lens_, 0, 0x111);
  calibrate(Answer::yes);
  EXPECT_EQ(undo_.size(), 2u);
  const int found = red1();
  EXPECT_NE(found, 0x111);
  wire();
  undo();
  EXPECT_TRUE(wire().starts_with("@6401*@6411*@6400*@6400*@6400*@6400*"));
  EXPECT_FALSE(lens_.values().calibrated);
  redo();
  EXPECT_EQ(red1(), found);
  EXPECT_TRUE(lens_.values().calibrated);

  const PerColour second = lens_.values().parameter2;
  type(lens_, 3, 7);
  calibrate(Answer::cancel);
  EXPECT_EQ(host_.last_status(), "The parameters were not sent: the old ones are kept.");
  undo();
  EXPECT_EQ(lens_.values().parameter2, second) << "it was no step";
  EXPECT_FALSE(lens_.values().calibrated) << "the ratio would bring what was declined";
}

TEST_F(UndoOfMeasurementsTest, ARatioMovedWhileTheParametersLeaveIsAStepOfItsOwn) {
  aim("flat-cos4", "off");
  host_.user.answers = {Answer::yes};
  switched(lens_, true, 5000);
  lens_.start_calibration(host_.user);
  for (int i = 0; i < 6000 && red1() == 0; ++i) wire(10);
  const int whole = red1();
  lens_.move_ratio(50);
  wire(5000);
  EXPECT_NEAR(red1(), whole / 2, 1);
  undo();
  EXPECT_EQ(red1(), whole);
  EXPECT_THAT(wire(0), testing::StartsWith("@64"));
}

TEST_F(UndoOfMeasurementsTest, AChartIsOneStepThatTakesItsFitsAlong) {
  aim("chart", "off");
  switched(matrix_, true);
  test::set_corners(matrix_, fake_, "chart");
  matrix_.measure_all();
  wire(30'000);
  EXPECT_EQ(matrix_.patches_left(), 1u);
  EXPECT_EQ(undo_.size(), 1u);
  matrix_.calculate(host_.user);
  undo();
  EXPECT_TRUE(matrix_.fits().calculated) << "the patches are still those";
  undo();
  EXPECT_EQ(matrix_.values().measured, MeasuredColours{});
  EXPECT_FALSE(matrix_.fits().calculated);
  redo();
  EXPECT_NE(matrix_.values().measured[23], MeasuredColour{});

  awb_.measure_all();
  wire(30'000);
  EXPECT_GT(awb_.values().patches[17].g, 0);
  EXPECT_EQ(undo_.next_undo(), "Measure 18");
  undo();
  EXPECT_EQ(awb_.values().patches[0].g, 0);
  EXPECT_EQ(awb_.values().patches[17].g, 0);
}

TEST_F(UndoListTest, LostPortAndClosedPage) {
  type(lens_, 0, 11);
  lens_.send_row(LensControl::parameter1);
  fake_.advance(1000);
  fake_.sender.connected = false;
  fake_.link.connection_changed();
  undo();
  EXPECT_EQ(red1(), 0);
  EXPECT_EQ(host_.last_status(), "Undone: Parameter-1 RED: not sent, the port is not open");
  {
    AwbDesk awb(host_, image());
    awb.watch(states_);
    type(awb, 0, 5);
    type(gamma_, 1, 5);
    EXPECT_EQ(undo_.next_undo(), "Point 1 R");
  }
  EXPECT_EQ(undo_.size(), 1u) << "the redo was dropped, and the closed page took its step along";
}

TEST_F(UndoListTest, WhatWasSentBeforeAPortWasLostIsSentOnceItIsBack) {
  type(lens_, 0, 0x11);
  lens_.send_row(LensControl::parameter1);
  fake_.advance(1000);
  for (const bool connected : {false, true}) {
    fake_.sender.connected = connected;
    fake_.link.connection_changed();
  }
  wire();
  undo();
  EXPECT_EQ(wire(), "@6400*@6400*@6400*@6400*@6400*@6400*");
  EXPECT_EQ(host_.last_status(), "Undone: Parameter-1 RED: 1 register sent");

  fake_.sender.connected = false;
  fake_.link.connection_changed();
  redo();
  EXPECT_EQ(red1(), 0x11);
  EXPECT_EQ(wire(), "") << "nothing is kept for the port's return";
}

TEST_F(UndoListTest, ALoadedFileIsAStepBetweenOthersAndSendsNothing) {
  type(lens_, 0, 0x11);
  image().set_word(440, 77);
  image().set_word(45, 88);
  image().mark_loaded();
  {
    AwbDesk awb(host_, image());
    awb.watch(states_);
    lens_.reload();
    gamma_.reload();
    image().set_word(181, 99);
    awb.reload();
    EXPECT_EQ(undo_.size(), 2u) << "a setting file changes all pages at once";
  }
  EXPECT_EQ(undo_.size(), 2u) << "the other pages' part of the load stays";
  type(lens_, 0, 0x22);
  undo();
  EXPECT_EQ(red1(), 77);
  undo();
  EXPECT_EQ(said_.back(), "Undone: Load <- File");
  EXPECT_EQ(red1(), 0x11);
  EXPECT_EQ(gamma_.values().curves[0][0], 0);
  undo();
  EXPECT_EQ(red1(), 0);
  redo();
  redo();
  EXPECT_EQ(red1(), 77) << "also where the file is not there any more";
  EXPECT_EQ(gamma_.values().curves[0][0], 88);
  EXPECT_EQ(wire(), "");
}

TEST_F(UndoListTest, ForgetsTheOldest) {
  for (std::size_t i = 0; i < UndoList::kMostSteps + 5; ++i) type(lens_, 0, static_cast<int>(i) + 1);
  EXPECT_EQ(undo_.size(), UndoList::kMostSteps);
  for (std::size_t i = 0; i < UndoList::kMostSteps; ++i) undo_.undo();
  EXPECT_EQ(red1(), 5);
  undo_.undo();
  EXPECT_EQ(red1(), 5);
}

}  // namespace
}  // namespace qv5123
