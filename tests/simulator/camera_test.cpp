#include "simulator/camera.h"
#include "link/indirect_access.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "simulator/preview.h"
#include "support/chip_talk.h"
#include "tuning/matrix_fit.h"
#include "tuning/patch_report.h"

using namespace qv5123;

namespace {

/// A chip that looks at a chart without noise, spoken to in text.
class Picture : public testing::Test {
 protected:
  Picture() {
    CameraTruth truth;
    truth.read_noise = truth.shot_noise = 0;
    chip.set_camera(Camera(Scene{}, truth));
  }
  std::string ask(const Batch& batch) { return test::ask(chip, frames(batch)); }
  int read(int address) {
    const std::string reply = ask(isp_read_request(address));
    return std::stoi(reply.substr(1, 2), nullptr, 16);
  }
  std::array<int, 3> read_rgb(int r, int g, int b) { return {read(r), read(g), read(b)}; }
  std::array<int, 3> picked() { return read_rgb(0xC3D, 0xC3E, 0xC3F); }
  std::array<int, 3> raw() { return read_rgb(0xC92, 0xC96, 0xC9A); }
  void point_at(PicturePoint point) {
    ask(isp_wide_write(0xC38, point.x));
    ask(isp_wide_write(0xC3A, point.y));
  }
  void switch_picker(bool on) { ask(isp_write(0xA29, on ? 0x81 : 0x01)); }

  test::ListeningChip chip;
};

}  // namespace

TEST(Scene, IsNamedAndHasItsPatchesOnGrey) {
  EXPECT_FALSE(scene_named("chart-1080"));
  const Scene small = *scene_named("chart-720");
  EXPECT_EQ(patch_middle(small, 23), (PicturePoint{1040, 600}));
  const ChartPose pose(small);
  EXPECT_EQ(scene_light(small, pose, 1040 + 63, 600 - 63), chart_colours()[23]);
  EXPECT_EQ(scene_light(small, pose, 1040 + 65, 600)[1], 0.2) << "between the patches";
  for (const int far : {-2'000'000'000, 2'000'000'000}) EXPECT_EQ(scene_light(small, pose, far, far)[1], 0.2);
  for (const char* no : {"", "chart-", "flat-foo", "turned", "chart--720"})
    EXPECT_FALSE(scene_named(no)) << no;
  EXPECT_EQ(scene_name(*scene_named("chart-720-steep-turned")), "chart-turned-steep-720");
  for (const char* name : kSceneNames) EXPECT_EQ(scene_name(scene_named(name).value()), name);
}

TEST(Scene, LiesAsItsTraitsSay) {
  const Scene turned = *scene_named("chart-turned");
  EXPECT_EQ(patch_middle(turned, 0), (PicturePoint{387, 139})) << "4 degrees clockwise, worked out by hand";
  const Scene angle = *scene_named("chart-angle");
  const ChartPose pose(angle);
  for (std::size_t i = 0; i < kChartPatches; ++i) {
    const PicturePoint middle = patch_middle(angle, i);
    EXPECT_EQ(pose.patch_at(middle.x, middle.y), i);
  }
  const auto width = [&](std::size_t left) {
    return patch_middle(angle, left + 1).x - patch_middle(angle, left).x;
  };
  EXPECT_NE(width(0), width(4)) << "one side is nearer";
  EXPECT_LT(patch_middle(angle, 5).x - patch_middle(angle, 0).x, 5 * patch_pitch(angle));
}

TEST(Scene, IsLitByTheChartsPublishedColoursUnderTheLampsOfTheWhites) {
  // L* 50.76 beside 95.19 is Y 0.1904 beside 0.8809; red stands at about the sRGB 175, 54, 60.
  EXPECT_NEAR(chart_colours()[21][1], 0.1904 / 0.8809, 0.003);
  EXPECT_NEAR(chart_colours()[14][0], 0.429 / 0.8809, 0.025);
  EXPECT_NEAR(chart_colours()[14][1], 0.037 / 0.8809, 0.01);
  EXPECT_LT(chart_colours()[17][0], 0) << "no screen has cyan";
  EXPECT_NEAR(lamp_light(4100)[2], 0.55, 1e-9);
  for (std::size_t i = 1; i < kLamps.size(); ++i)
    EXPECT_LT(lamp_light(kLamps[i])[2], lamp_light(kLamps[i - 1])[2]) << "warmer";
}

TEST(Camera, RepeatsItsNoiseAndSaturates) {
  CameraTruth truth;
  truth.seed = 7;
  const Camera camera(*scene_named("flat"), truth);
  EXPECT_EQ(camera.raw(3, 4, 1), Camera(camera.scene(), truth).raw(3, 4, 1));
  truth.seed = 8;
  EXPECT_NE(camera.raw(3, 4, 1), Camera(camera.scene(), truth).raw(3, 4, 1));
  EXPECT_EQ(camera.raw(0, 0, 1000)[1], Camera::kFullScale);
}

TEST(Camera, SeesThroughTheLensAndTheLightOfItsScene) {
  const auto quiet = [](const char* scene) {
    CameraTruth truth;
    set_noise(truth, "off");
    return Camera(*scene_named(scene), truth);
  };
  // 950 pixels right of green's centre, 2400 behind the lens.
  EXPECT_NEAR(quiet("flat-cos4").transmission(1926, 546, 1), 0.7474, 0.0001);
  EXPECT_LT(quiet("flat-steep").transmission(1926, 546, 1), 0.65);
  EXPECT_NE(quiet("flat-cos4").transmission(0, 546, 0), quiet("flat-cos4").transmission(0, 546, 2));

  const PicturePoint red = patch_middle(Scene{}, 14);
  const PicturePoint grey = patch_middle(Scene{}, 21);
  const auto ratio = [&](const char* scene, PicturePoint at, std::size_t c) {
    return quiet(scene).signal(at.x, at.y, 1)[c] / quiet("chart").signal(at.x, at.y, 1)[c];
  };
  bool differs = false;
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(ratio("chart-metameric", red, c), 1, 0.04);
    differs = differs || ratio("chart-metameric", red, c) != 1;
    EXPECT_EQ(ratio("chart-metameric", grey, c), 1);
  }
  EXPECT_TRUE(differs);
  EXPECT_GT(ratio("chart-flare", patch_middle(Scene{}, 23), 1), 1.5) << "most of what is dark";
  EXPECT_GT(ratio("chart-warm", grey, 0), 1.2);
  EXPECT_GT(ratio("chart-warm", {1900, 540}, 1), 1.2 * ratio("chart-warm", {20, 540}, 1));

  CameraTruth truth;
  EXPECT_EQ(noise_name(truth), "low");
  EXPECT_TRUE(set_noise(truth, "high"));
  EXPECT_FALSE(set_noise(truth, "none"));
  EXPECT_EQ(noise_name(truth), "high");
}

TEST_F(Picture, PickerMeasuresWhileItIsOn) {
  const auto factory = picked();
  point_at(patch_middle(Scene{}, 14));
  EXPECT_EQ(picked(), factory) << "off: the last values stay";
  switch_picker(true);
  const auto red = picked();
  EXPECT_GT(red[0], 2 * red[1]);
  point_at({2303, 1535});
  EXPECT_LT(picked()[0], red[0]) << "the square stays inside, on grey";
  EXPECT_NE(ask(dump_request(0xC92, 0xC92)), "\r\n0xFC92 = 0x76\r\n") << "a dump looks as well";
}

TEST_F(Picture, TasksAimAtTheSceneUntilTheyAreStopped) {
  switch_picker(true);
  point_at(patch_middle(Scene{}, 18));
  const auto white = picked();
  EXPECT_NEAR(white[1], 225, 4) << "9 counts per unit of the AE target";
  EXPECT_NEAR(white[0], white[1], 3);
  EXPECT_LT(raw()[2], 0.8 * raw()[1]) << "a warm lamp, in front of the white balance";

  ask({{0x3A, 20}});
  EXPECT_NEAR(picked()[1], 180, 4);
  ask({{0x2F, 0}, {0x2F, 50}, {0x2F, 0xFF}, {0x2F, 0xCE}});  // red +50, blue -50
  EXPECT_GT(picked()[0], 1.1 * picked()[1]);
  EXPECT_LT(picked()[2], 0.9 * picked()[1]);

  const auto before = picked();
  ask({{0xA0, 0}, {0xA1, 0}, {0x3A, 10}, {0x2F, 0}, {0x2F, 0}, {0x2F, 0}, {0x2F, 0}});
  EXPECT_EQ(picked(), before);
}

TEST_F(Picture, MatrixOfTheModeInForceActsOnWhatIsMeasured) {
  switch_picker(true);
  const Batch swap = {{0x52, 0}, {0x52, 0}, {0x52, 4}, {0x52, 0}, {0x52, 0}, {0x52, 0}};  // red from green
  point_at(patch_middle(Scene{}, 13));
  const auto plain = picked();
  ask({{0x4E, 0}, {0xCA, 1}});
  ask(swap);
  EXPECT_EQ(picked(), plain) << "AHD is not the video mode";
  ask({{0x6E, 2}});
  EXPECT_EQ(picked()[0], plain[1]);
  ask(isp_write(0xA20, 0x80));
  EXPECT_EQ(picked(), plain) << "colour processing is off";
}

TEST_F(Picture, KeysMoveTheMarkWhileItIsSet) {
  const auto x = [&] { return read(0xC38) * 256 + read(0xC39); };
  ask({{0x01, 3}, {0x33, 0}, {0x01, 3}, {0x01, 0}, {0x01, 200}});
  EXPECT_EQ(x(), 976);
  EXPECT_EQ(read(0xC3A) * 256 + read(0xC3B), 524);
  for (int i = 0; i < 100; ++i) ask({{0x01, 2}});
  EXPECT_EQ(x(), 0);
}

TEST_F(Picture, PreviewShowsTheOutputWithTheCursor) {
  const auto shown = [&] { return render_preview(*chip.camera(), picture_settings(chip.state()), 192, 108); };
  const auto at = [](const Preview& preview, PicturePoint point) {
    return preview.pixels[static_cast<std::size_t>(point.y / 10 * 192 + point.x / 10)];
  };
  chip.look();
  const Preview plain = shown();
  ASSERT_EQ(plain.pixels.size(), 192u * 108u);
  EXPECT_GT(at(plain, patch_middle(Scene{}, 18)) & 0xFF, 230u) << "white, through the gamma curve";
  ask({{0x84, 0}});
  EXPECT_LT(at(shown(), patch_middle(Scene{}, 21)) & 0xFF, at(plain, patch_middle(Scene{}, 21)) & 0xFF)
      << "linear";
  ask({{0x34, 0}});
  const Preview checked = shown();
  EXPECT_GT(std::count(checked.pixels.begin(), checked.pixels.end(), 0xFF00E000u), 2000);
  EXPECT_EQ(checked.pixels[54 * 192 + 100], 0xFFFFFFFFu) << "the square's edge";
  EXPECT_TRUE(render_preview(*chip.camera(), {}, 5, -1).pixels.empty());
}

TEST_F(Picture, TheMatrixFittedToTheChartUndoesTheCrosstalk) {
  CameraTruth truth;
  truth.read_noise = truth.shot_noise = 0;
  truth.fall_off_a = truth.fall_off_b = {};
  chip.set_camera(Camera(Scene{}, truth));
  ask(Batch(6, {0x64, 0}));  // no lens, no correction of it
  ask(Batch(6, {0x65, 0}));
  chip.look();  // and expose
  ask({{0xA0, 0}, {0xA1, 0}});
  ask(isp_write(0xA20, 0x80));
  switch_picker(true);
  MatrixValues values;
  for (std::size_t i = 0; i < kPatches; ++i) {
    point_at(patch_middle(Scene{}, i));
    std::ranges::copy(picked(), values.measured[i].begin());
  }
  EXPECT_EQ(calculate_matrix(values), MatrixResult::ok);
  // The inverse of the crosstalk under the lamp with rows that sum to 1, worked out by hand.
  constexpr double kTruth[3][3] = {{1.286, -0.261, -0.025}, {-0.215, 1.380, -0.165}, {-0.011, -0.763, 1.775}};
  for (std::size_t i = 0; i < 9; ++i)
    EXPECT_NEAR(values.coefficients[i / 3][i % 3], kTruth[i / 3][i % 3], 0.05);
  const auto report = patch_report(values.measured, values.coefficients);
  EXPECT_GT(report->before.mean, 5.5);
  EXPECT_LE(report->after.mean, 1.1);
}
