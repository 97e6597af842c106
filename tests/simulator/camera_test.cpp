#include "simulator/camera.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "simulator/preview.h"
#include "support/chip_talk.h"

using namespace qv5123;

namespace {

/// A chip that looks at a chart without noise, spoken to in text.
class Picture : public testing::Test {
 protected:
  Picture() { aim(Scene{}); }
  void aim(const Scene& scene) {
    CameraTruth truth;
    truth.read_noise = truth.shot_noise = 0;
    chip.set_camera(Camera(scene, truth));
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
  EXPECT_FALSE(scene_named(""));

  const Scene small = *scene_named("chart-720");
  EXPECT_EQ(patch_middle(small, 0), (PicturePoint{240, 120}));
  EXPECT_EQ(patch_middle(small, 23), (PicturePoint{1040, 600}));
  EXPECT_EQ(scene_light(small, 1040 + 63, 600 - 63), (Light{0.033171315, 0.034032973, 0.035800748}));
  EXPECT_EQ(scene_light(small, 1040 + 64, 600), (Light{0.2, 0.2, 0.2})) << "beside the patch";
  for (const int far : {-2'000'000'000, 2'000'000'000}) EXPECT_EQ(scene_light(small, far, far)[1], 0.2);
}

TEST(Camera, FallsOffRoundTheLensCentreAndRepeatsItsNoise) {
  CameraTruth truth;
  truth.seed = 7;
  const Camera camera(*scene_named("flat"), truth);
  const PicturePoint centre = camera.lens_centre();
  const double d2 = 0.25 * 0.25;  // 512 pixels
  for (std::size_t c = 0; c < 3; ++c) {
    const double gain = 1 + truth.fall_off_a[c] * d2 + truth.fall_off_b[c] * d2 * d2;
    EXPECT_NEAR(camera.signal(centre.x, centre.y, 1)[c] / camera.signal(centre.x, centre.y - 512, 1)[c], gain,
                1e-9);
  }

  EXPECT_EQ(camera.raw(3, 4, 1), Camera(camera.scene(), truth).raw(3, 4, 1));
  truth.seed = 8;
  EXPECT_NE(camera.raw(3, 4, 1), Camera(camera.scene(), truth).raw(3, 4, 1));
  EXPECT_EQ(camera.raw(0, 0, 1000)[1], Camera::kFullScale) << "saturates";
}

TEST_F(Picture, PickerMeasuresWhileItIsOn) {
  const auto factory = picked();
  point_at(patch_middle(Scene{}, 14));
  EXPECT_EQ(picked(), factory) << "off: the last values stay";
  switch_picker(true);
  const auto red = picked();
  EXPECT_GT(red[0], 2 * red[1]);
  const auto edge_of_picture = [&](PicturePoint point) {
    point_at(point);
    return picked();
  };
  EXPECT_EQ(edge_of_picture({2303, 1535}), edge_of_picture({1919, 1079})) << "the square stays inside";
  switch_picker(false);
  EXPECT_EQ(read(0xC3D), edge_of_picture({0, 0})[0]);
  EXPECT_NE(ask(dump_request(0xC92, 0xC92)), "\r\n0xFC92 = 0x76\r\n") << "a dump looks as well";
}

TEST_F(Picture, TasksAimAtTheSceneUntilTheyAreStopped) {
  switch_picker(true);
  point_at(patch_middle(Scene{}, 18));
  const auto white = picked();
  EXPECT_NEAR(white[1], 225, 4) << "9 counts per unit of the AE target";
  EXPECT_NEAR(white[0], white[1], 3);
  EXPECT_NEAR(white[2], white[1], 8) << "the patch itself is a little yellow";
  EXPECT_LT(raw()[2], 0.8 * raw()[1]) << "a warm lamp, in front of the white balance";

  ask({{0x3A, 20}});
  EXPECT_NEAR(picked()[1], 180, 4);
  ask({{0x2F, 0}, {0x2F, 50}, {0x2F, 0xFF}, {0x2F, 0xCE}});  // red +50, blue -50
  EXPECT_GT(picked()[0], 1.1 * picked()[1]);
  EXPECT_LT(picked()[2], 0.9 * picked()[1]);

  const auto before = picked();
  ask({{0xA0, 0}});
  ask({{0xA1, 0}});
  ask({{0x3A, 10}});
  ask({{0x2F, 0}, {0x2F, 0}, {0x2F, 0}, {0x2F, 0}});
  EXPECT_EQ(picked(), before);
  aim({Scene::Kind::flat});
  const int gain = read(0xA08) * 256 + read(0xA09);
  EXPECT_EQ(gain, read(0xA08) * 256 + read(0xA09));
  ask({{0xA0, 1}});
  EXPECT_NE(gain, read(0xA08) * 256 + read(0xA09));
}

TEST_F(Picture, WhiteIsWhatTheLinesSay) {
  switch_picker(true);
  point_at({100, 100});
  const auto neutral = picked();
  ask({{0x15, 0xFF}, {0x15, 0x00}});  // line E far to the left: nothing is white any more
  ask({{0x2F, 0}, {0x2F, 50}, {0x2F, 0}, {0x2F, 0}});
  EXPECT_EQ(picked(), neutral);
  const WhiteTest test(chip.state().factory_data);
  EXPECT_TRUE(test.is_white({1, 1, 0.75}));
  EXPECT_FALSE(test.is_white({1, 0.1, 0.1}));
  EXPECT_FALSE(test.is_white({0, 0, 0}));
}

TEST_F(Picture, MatrixOfTheModeAndLightInForceActsOnWhatIsMeasured) {
  switch_picker(true);
  const Batch swap = {{0x52, 0}, {0x52, 0}, {0x52, 4}, {0x52, 0}, {0x52, 0}, {0x52, 0}};  // red from green
  point_at(patch_middle(Scene{}, 13));
  const auto plain = picked();
  ask({{0x4E, 0}, {0xCA, 1}});
  ask(swap);
  EXPECT_EQ(picked(), plain) << "AHD is not the video mode";
  ask({{0x6E, 2}});
  EXPECT_EQ(picked()[0], plain[1]);
  ask({{0x4E, 1}});
  EXPECT_NE(picked()[0], plain[1]) << "another light source, another matrix";
  ask({{0x4E, 0}});
  ask(isp_write(0xA20, 0x80));
  EXPECT_EQ(picked(), plain) << "colour processing is off";
}

TEST_F(Picture, ShadingCorrectionActsUnlessThePickerSitsBeforeIt) {
  aim({Scene::Kind::flat});
  switch_picker(true);
  ask({{0xA0, 0}});
  point_at({16, 16});
  const auto corrected = picked();
  ask(isp_write(0xA10, 0x00));
  const auto fallen_off = picked();
  EXPECT_LT(fallen_off[1], 0.9 * corrected[1]);
  ask(isp_write(0xA10, 0x10));
  ask({{0x64, 0}, {0x64, 0}, {0x64, 0}, {0x64, 0}, {0x64, 0}, {0x64, 0}});
  ask({{0x65, 0}, {0x65, 0}, {0x65, 0}, {0x65, 0}, {0x65, 0}, {0x65, 0}});
  EXPECT_EQ(picked()[1], fallen_off[1]) << "parameters of 0 correct nothing";
}

TEST_F(Picture, KeysMoveTheMarkWhileItIsSet) {
  const auto x = [&] { return read(0xC38) * 256 + read(0xC39); };
  ask({{0x01, 3}});
  EXPECT_EQ(x(), 960);
  ask({{0x33, 0}});
  ask({{0x01, 3}});
  ask({{0x01, 0}});
  ask({{0x01, 200}});
  EXPECT_EQ(x(), 976);
  EXPECT_EQ(read(0xC3A) * 256 + read(0xC3B), 524);
  for (int i = 0; i < 100; ++i) ask({{0x01, 2}});
  EXPECT_EQ(x(), 0);
  ask({{0x34, 0}});
  ask({{0x01, 3}});
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
  EXPECT_GT(at(plain, patch_middle(Scene{}, 23)) & 0xFF, 40u);

  ask({{0x84, 0}});
  EXPECT_LT(at(shown(), patch_middle(Scene{}, 23)) & 0xFF, 20u) << "linear";
  ask({{0x84, 1}});
  ask({{0x5F, 3}});
  EXPECT_EQ(at(shown(), patch_middle(Scene{}, 5)), at(plain, patch_middle(Scene{}, 18)))
      << "turned upside down";
  ask({{0x5F, 0}});
  ask({{0x34, 0}});
  const Preview checked = shown();
  EXPECT_GT(std::count(checked.pixels.begin(), checked.pixels.end(), 0xFF00E000u), 2000);
  ask({{0x33, 0}});
  EXPECT_EQ(checked.pixels[54 * 192 + 100], 0xFFFFFFFFu) << "the square's edge";
  for (const Preview& none :
       {render_preview(*chip.camera(), {}, 0, 5), render_preview(*chip.camera(), {}, 5, -1)}) {
    EXPECT_TRUE(none.pixels.empty());
  }
}
