#include "tuning/lens_checks.h"

#include <gmock/gmock.h>

#include <cmath>

#include "support/chip_desk_bench.h"
#include "tuning/lens_desk.h"
#include "tuning/lens_fit.h"
#include "tuning/lens_shading.h"

namespace qv5123 {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

LensCalibration fitted(std::vector<LensSample> samples) {
  LensCalibration calibration;
  calibration.samples = std::move(samples);
  calibration.centre = fit_lens_centre(calibration.samples, calibration.width);
  LensValues values;
  recompute_lens(calibration, values);
  return calibration;
}

/// What a sweep over a line of a scene, across patches where there are some comes to, its brightest level at
/// 200 counts where it is exposed rightly.
LensCalibration swept(const char* scene_name) {
  const Scene scene = *scene_named(scene_name);
  CameraTruth truth;
  set_noise(truth, "off");
  const Camera camera(scene, truth);
  const double gain = 200 * camera.overexposure() / camera.signal(960, 420, 1)[0];
  std::vector<LensSample> samples;
  for (const int x : lens_positions(scene.width)) {
    const Light raw = camera.raw(x, 420, gain);
    samples.push_back(
        lens_sample(x, {static_cast<int>(std::lround(raw[0])), static_cast<int>(std::lround(raw[1])),
                        static_cast<int>(std::lround(raw[2]))}));
  }
  return fitted(std::move(samples));
}

std::string all_warnings(const LensCalibration& calibration) {
  std::string all;
  for (const std::string& warning : lens_warnings(calibration)) all += warning + "\n";
  return all;
}

TEST(LensChecks, DoubtWhatNoLensDoes) {
  EXPECT_EQ(all_warnings(swept("flat")), "");
  EXPECT_EQ(all_warnings(swept("flat-cos4")), "");
  EXPECT_THAT(all_warnings(swept("flat-bright")), HasSubstr("Readings of red are clipped, over 250 counts"));
  EXPECT_THAT(all_warnings(swept("flat-bright")), HasSubstr("All readings of green are 255"));
  EXPECT_THAT(all_warnings(swept("chart")), HasSubstr("% off a smooth line: is the scene even?"));

  std::vector<LensSample> still;
  std::vector<LensSample> hollow;
  for (const int x : lens_positions(1920)) {
    still.push_back(lens_sample(x, {10, 20, 30}));
    const int level = 100 + (x - 960) * (x - 960) / 10'000;
    hollow.push_back(lens_sample(x, {level, level, level}));
  }
  EXPECT_THAT(all_warnings(fitted(still)), StartsWith("All readings of red are 10: is the picker on"));
  EXPECT_THAT(all_warnings(fitted(hollow)), HasSubstr("Parameter-1 of green is at its limit, 4095."));
  EXPECT_THAT(all_warnings(fitted(hollow)), HasSubstr("no flatter than the measured one: ripple "));
  std::vector<LensSample> tunnel;
  for (const int x : lens_positions(1920))
    tunnel.push_back(
        lens_sample(x, {std::max(1, 250 - std::abs(x - 960) / 3), 200, 200 - std::abs(x - 960) / 20}));
  EXPECT_THAT(all_warnings(fitted(tunnel)), HasSubstr("Parameter-1 of red was fitted below 0"));
}

TEST(LensChecks, ASecondParameterBelowZeroIsBetterLeftOut) {
  EXPECT_FALSE(second_parameter_clamped(swept("flat")));
  for (const char* scene : {"flat-cos4", "flat-steep"}) {
    const LensCalibration found = swept(scene);
    EXPECT_TRUE(second_parameter_clamped(found)) << scene;
    const double stated = lens_line_ripple(found, found.fit.parameter1, found.fit.parameter2);
    EXPECT_LT(lens_line_ripple(found, first_parameter_alone(found, 100), {}), stated) << scene;
    EXPECT_LT(stated, lens_line_ripple(found)) << scene;
  }
}

TEST(LensChecks, AFieldThatSaysNothingIsNotFlat) {
  LensField field(kFieldPlaces, PerColour{200, 100, 250});
  EXPECT_TRUE(field_tells(field));
  field[7][2] = 251;
  field[8][0] = 0;
  EXPECT_THAT(field_warnings(field),
              testing::ElementsAre("Readings of blue are clipped, over 250 counts: less "
                                   "light shows the ripple."));
  EXPECT_FALSE(field_tells(field));
  field.assign(kFieldPlaces, PerColour{});
  EXPECT_EQ(field_warnings(field).size(), 3u);
  field.assign(kFieldPlaces - 1, PerColour{200, 200, 200});
  EXPECT_FALSE(field_tells(field)) << "not the whole picture";
}

class LensDeskOnAChip : public test::OnAChip<> {
 protected:
  LensDeskOnAChip() { aim("flat-cos4", "off"); }
  void check_field(int milliseconds = 60'000) {
    desk_.press_check_field();
    wire(milliseconds);
  }
  /// What was sent to the registers of the parameters.
  std::string calibrated() {
    switched(desk_, true, 5000);
    desk_.start_calibration(host_.user);
    const std::string sent = wire(60'000);
    const std::size_t at = sent.find("@64");
    return at == std::string::npos ? std::string() : sent.substr(at, 72);
  }

  LensDesk desk_{host_, host_.doc.user_data};
};

TEST_F(LensDeskOnAChip, AsksWhatToSendWhereTheChipCannotDoWhatWasFitted) {
  const LensValues old = desk_.values();
  EXPECT_EQ(calibrated(), "") << "cancelled: the default";
  ASSERT_EQ(host_.user.questions.size(), 1u);
  const Question& question = host_.user.questions[0];
  EXPECT_THAT(question.text,
              HasSubstr("Parameter-2 came out below 0, which the chip cannot do, and became 0"));
  EXPECT_EQ(question.preferred, Answer::cancel);
  EXPECT_EQ(desk_.values().parameter1, old.parameter1);
  EXPECT_FALSE(desk_.values().calibrated);
  EXPECT_FALSE(desk_.picker().on());
  EXPECT_EQ(host_.last_status(), "The parameters were not sent: the old ones are kept.");
  EXPECT_FALSE(desk_.calibration().samples.empty()) << "still to be seen";

  host_.user.answers = {Answer::no, Answer::yes};
  EXPECT_TRUE(calibrated().ends_with("@6500*@6500*@6500*@6500*@6500*@6500*"));
  const PerColour alone = desk_.values().parameter1;
  desk_.move_ratio(50);
  EXPECT_NEAR(desk_.values().parameter1[1], alone[1] / 2, 1) << "the ratio goes on with the first alone";
  desk_.move_ratio(100);
  calibrated();
  EXPECT_LT(desk_.values().parameter1[1], alone[1]) << "as fitted";
}

TEST_F(LensDeskOnAChip, WhatARatioOf0HidesIsAskedAboutBeforeTheRatioBringsIt) {
  desk_.move_ratio(0);
  EXPECT_EQ(calibrated(), "");
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_THAT(host_.user.questions[0].text, HasSubstr("Parameter-2 came out below 0"));
  desk_.move_ratio(100);
  EXPECT_EQ(wire(), "");
  desk_.move_ratio(0);
  host_.user.answers = {Answer::yes};
  EXPECT_TRUE(calibrated().starts_with("@6400*@6400*@6400*"));
}

TEST_F(LensDeskOnAChip, ChecksTheFieldWithTheCorrectionOfTheChip) {
  check_field();
  ASSERT_EQ(desk_.picture().size(), 45u);
  const double uncorrected = field_ripple(desk_.picture())[1];
  EXPECT_THAT(host_.last_status(), StartsWith("Ripple of the whole picture: red "));
  EXPECT_FALSE(chip_.state().isp[0xA29] & 0x80) << "the picker is off again";
  EXPECT_TRUE(chip_.state().isp[0xA10] & 0x10);
  host_.user.answers = {Answer::no};
  calibrated();
  check_field();
  EXPECT_LT(field_ripple(desk_.picture())[1], uncorrected);

  check_field(5000);
  check_field(5000);
  EXPECT_EQ(host_.last_status(), "Check field: stopped.");
  EXPECT_FALSE(desk_.checking_field());

  fake_.sender.chip = [this](const std::string& bytes) {
    if (bytes.starts_with("@94")) fake_.receive(bytes.starts_with("@940a*") ? "~15^" : "~00^");
  };
  check_field();
  EXPECT_THAT(host_.last_status(), StartsWith("Check field says nothing: No reading of red is above 1"));
}

TEST(Picker, MovesWithinThePicture) {
  EXPECT_EQ(moved({100, 5}, PickerMove::up, 3), (PickerPosition{100, 0}));
  EXPECT_EQ(moved({2300, 5}, PickerMove::right, 2), (PickerPosition{2303, 5}));
  EXPECT_EQ(moved({2300, 1535}, PickerMove::down, 99), (PickerPosition{2300, 1535}));
  EXPECT_EQ(moved({2147483647, -5}, PickerMove::left, 7), (PickerPosition{2175, 0}));
}

TEST(LensFit, TakesTheCentreFromBlueAndTruncates) {
  std::vector<LensSample> samples;
  for (int x : lens_positions(1280)) {
    samples.push_back({x, {2000000 - (x - 500) * (x - 500), -x, 1000000 - (x - 799) * (x - 800)}, 0});
  }
  const LensCentre centre = fit_lens_centre(samples, 1280);
  EXPECT_NEAR(centre.peak[0], 2000000, 1);
  EXPECT_NEAR(centre.x, 799, 1);
  EXPECT_EQ(lens_sample(16, {100, 200, 50}).luma, 167);  // 21.26 + 143.04 + 3.61
}

TEST(LensFit, ClampsAndSurvivesWhatCannotBeFitted) {
  const LensCentre steep{640, {255, 255, 255}, {}, {}};
  std::vector<LensSample> samples;
  for (int x : lens_positions(1280))
    samples.push_back({x, {x < 640 ? 1 : 2, 255 - std::abs(x - 640) / 3, 255}, 0});
  const LensFit fit = fit_lens(samples, steep, 100);
  EXPECT_EQ(fit.parameter1[0], 4095);
  EXPECT_GT(fit.b[1], 0);
  EXPECT_EQ(fit.parameter2[1], 0) << "a rising fourth power cannot be expressed";

  EXPECT_FALSE(fit_lens({{16, {0, 0, 0}, 0}}, {}, 100).determined);
  EXPECT_FALSE(fit_lens({}, {}, 100).determined);
  LensCalibration empty;
  LensValues values;
  values.parameter1[1] = 7;
  EXPECT_EQ(recompute_lens(empty, values), "");
  EXPECT_EQ(values.parameter1[1], 7);
}

}  // namespace
}  // namespace qv5123
