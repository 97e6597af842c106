#include "simulator/ui/camera_dock.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QSignalSpy>

#include "base/ui/qt_scheduler.h"
#include "support/chip_talk.h"
#include "support/page_driver.h"

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

TEST(CameraDock, AClickTellsThePlaceInWhatTheChipPutsOut) {
  DockBench bench;
  QSignalSpy clicked(&bench.dock, &CameraDock::place_clicked);
  bench.dock.show();
  ASSERT_TRUE(bench.shown.wait());
  auto* view = test::find<QWidget>(bench.dock, "Picture of the simulated camera");
  const auto expect_click = [&](int x, int y, const char* how) {
    const QSizeF whole = bench.dock.picture().size().scaled(view->size(), Qt::KeepAspectRatio);
    const QPointF corner((view->width() - whole.width()) / 2, 0);
    test::mouse(view, QEvent::MouseButtonPress, corner + QPointF(whole.width() / 4, whole.height() / 4));
    ASSERT_EQ(clicked.size(), 1) << how;
    const QList<QVariant> place = clicked.takeFirst();
    EXPECT_NEAR(place[0].toInt(), x, 8) << how;
    EXPECT_NEAR(place[1].toInt(), y, 8) << how;
  };
  expect_click(480, 270, "as it is");
  bench.write({{0x5F, 2}});
  ASSERT_TRUE(bench.shown.wait());
  expect_click(480, 809, "upside down");
  bench.write({{0x5F, 1}});
  ASSERT_TRUE(bench.shown.wait());
  expect_click(1439, 270, "as in a mirror");
  test::mouse(view, QEvent::MouseButtonPress, QPointF(view->width() / 2.0, view->height() - 1));
  EXPECT_TRUE(clicked.isEmpty()) << "below the picture";
}

TEST(CameraDock, EndsWhileAPictureIsBeingComputed) {
  DockBench bench;
  bench.dock.show();
}

}  // namespace
}  // namespace qv5123
