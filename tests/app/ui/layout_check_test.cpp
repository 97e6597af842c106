#include "app/ui/layout_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtWidgets>

#include "app/ui/camera_place.h"
#include "app/ui/window_bench.h"
#include "simulator/ui/camera_dock.h"
#include "support/chip_talk.h"

namespace qv5123 {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(LayoutCheck, TellsWhatIsCutOffOrHasNoRoom) {
  QWidget window;
  window.resize(400, 300);
  auto* fits = new QPushButton("Fits", &window);
  fits->setGeometry(0, 0, 100, 30);
  auto* narrow = new QCheckBox("Standard ITU.709 Gamma", &window);
  narrow->setGeometry(0, 40, 60, 30);
  auto* number = new QSpinBox(&window);
  number->setAccessibleName("Number");
  number->setRange(0, 1'000'000);
  number->setGeometry(0, 80, 40, 30);
  auto* outside = new QPushButton("Out", &window);
  outside->setGeometry(350, 0, 100, 30);
  auto* above = new QPushButton("Over", &window);
  above->setGeometry(50, 10, 100, 30);
  auto* area = new QScrollArea(&window);
  area->setGeometry(0, 200, 100, 100);
  auto* wide = new QLabel("Wide", &window);
  wide->resize(300, 20);
  area->setWidget(wide);
  window.show();
  EXPECT_THAT(layout_faults(window),
              UnorderedElementsAre(
                  AllOf(HasSubstr("QCheckBox 'Standard ITU.709 Gamma' cuts off its text"), HasSubstr("has ")),
                  HasSubstr("QSpinBox 'Number' cuts off its text"),
                  HasSubstr("QPushButton 'Out' reaches out of QWidget ''"),
                  HasSubstr("QPushButton 'Over' stands over QPushButton 'Fits'"),
                  HasSubstr("QLabel 'Wide' scrolls sideways: is 300 wide")));
}

struct Look {
  const char* name;
  const char* style;
  QSize size;
};

void PrintTo(const Look& look, std::ostream* out) {
  *out << look.name;
}

class EveryPage : public testing::TestWithParam<Look> {};

TEST_P(EveryPage, HasRoomForAllOfIt) {
  QApplication::setStyle(GetParam().style);
  {
    test::WindowBench bench(GetParam().size);
    for (const PageEntry& entry : kPageEntries) {
      bench.choose(entry.id);
      EXPECT_THAT(layout_faults(*bench.frame), IsEmpty()) << entry.name;
    }
  }
  QApplication::setStyle("fusion");
}

INSTANTIATE_TEST_SUITE_P(Looks, EveryPage,
                         testing::Values(Look{"usual", "fusion", {1280, 770}},
                                         Look{"windows_style", "windows", {1280, 770}},
                                         Look{"at_150_percent", "fusion", {853, 500}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(CameraPlace, TheCameraNeverCoversAPage) {
  test::ListeningChip chip;
  chip.set_camera(Camera(Scene{}));
  test::WindowBench bench;
  auto* dock =
      new CameraDock([&chip](const auto& use) { use(chip); }, bench.wire.scheduler, bench.frame.get());
  place_camera(*bench.frame, *dock, false);
  dock->toggleViewAction()->trigger();
  for (const PageEntry& entry : kPageEntries) {
    bench.choose(entry.id);
    EXPECT_TRUE(dock->isVisible());
    EXPECT_THAT(layout_faults(*bench.frame), IsEmpty()) << entry.name;
  }
}

}  // namespace
}  // namespace qv5123
