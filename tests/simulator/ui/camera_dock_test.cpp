#include "simulator/ui/camera_dock.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QSignalSpy>

#include "base/ui/qt_scheduler.h"
#include "support/chip_talk.h"

namespace qv5123 {
namespace {

struct DockBench {
  test::ListeningChip chip;
  QtScheduler scheduler;
  CameraDock dock{[this](const std::function<void(SimulatedChip&)>& use) { use(chip); }, scheduler};
  QSignalSpy shown{&dock, &CameraDock::picture_shown};

  DockBench() {
    chip.set_camera(Camera(Scene{}));
    dock.resize(480, 400);
  }
  void write(const Batch& batch) { test::ask(chip, frames(batch)); }
  /// The colour at these hundredths of the picture.
  QColor at(int x, int y) const {
    const QImage& picture = dock.picture();
    return picture.pixelColor(picture.width() * x / 100, picture.height() * y / 100);
  }
};

TEST(CameraDock, ShowsTheChipsPictureWhenItHasChangedAimsTheCameraAndRestsWhileHidden) {
  DockBench bench;
  bench.dock.show();
  ASSERT_TRUE(bench.shown.wait());
  EXPECT_GT(bench.at(19, 83).green(), 230) << "the white patch";
  EXPECT_FALSE(bench.shown.wait(2 * static_cast<int>(CameraDock::kLook.count()))) << "nothing new";
  bench.write({{0x5F, 2}});
  ASSERT_TRUE(bench.shown.wait());
  EXPECT_GT(bench.at(19, 17).green(), 230) << "turned upside down";

  // As assistive tools choose.
  auto* scene = bench.dock.findChild<QComboBox*>("scene");
  scene->setCurrentIndex(3);
  EXPECT_EQ(bench.chip.camera()->scene(), scene_named("flat-720"));
  ASSERT_TRUE(bench.shown.wait());
  EXPECT_NEAR(bench.at(19, 17).green(), bench.at(50, 50).green(), 20);

  auto* lamp = bench.dock.findChild<QComboBox*>("lamp");
  auto* noise = bench.dock.findChild<QComboBox*>("noise");
  EXPECT_EQ(noise->currentText(), "Noise low");
  lamp->setCurrentIndex(lamp->findData(2400));
  noise->setCurrentIndex(2);
  EXPECT_EQ(bench.chip.camera()->truth().lamp, 2400);
  EXPECT_EQ(noise_name(bench.chip.camera()->truth()), "high");
  EXPECT_EQ(bench.chip.camera()->scene(), scene_named("flat-720"));
  bench.chip.set_camera(Camera(*scene_named("chart-turned-steep")));
  const QString set_elsewhere = "Colour chart, turned by 4 degrees, steep lens";
  while (!scene->currentText().startsWith(set_elsewhere)) ASSERT_TRUE(bench.shown.wait());

  bench.dock.hide();
  bench.write({{0x5F, 1}});
  EXPECT_FALSE(bench.shown.wait(2 * static_cast<int>(CameraDock::kLook.count())));
}

TEST(CameraDock, EndsWhileAPictureIsBeingComputed) {
  DockBench bench;
  bench.dock.show();
}

}  // namespace
}  // namespace qv5123
