#include "tuning/chart_run.h"

#include <gmock/gmock.h>

#include "base/hex.h"
#include "support/chip_desk_bench.h"
#include "tuning/patch_report.h"

namespace qv5123 {
namespace {

using test::middle_of;
using testing::HasSubstr;

TEST(ChartRun, FindsAllPatchesFromTheFourAtTheCorners) {
  for (const char* scene : {"chart", "chart-turned", "chart-angle", "chart-turned-angle-720"}) {
    ChartCorners corners;
    for (std::size_t i = 0; i < corners.size(); ++i) corners[i] = middle_of(scene, kCornerPatches[i]);
    const auto places = patch_places(corners);
    ASSERT_TRUE(places) << scene;
    for (std::size_t i = 0; i < kPatches; ++i) {
      const PickerPosition middle = middle_of(scene, i);
      EXPECT_NEAR((*places)[i].x, middle.x, 3) << scene << " " << i;
      EXPECT_NEAR((*places)[i].y, middle.y, 3) << scene << " " << i;
    }
    std::swap(corners[0], corners[1]);
    EXPECT_FALSE(patch_places(corners)) << "they cross";
    corners[0].reset();
    EXPECT_FALSE(patch_places(corners));
  }
}

class MatrixDeskOnAChip : public test::OnAChip<> {
 protected:
  void set_corners(const char* scene) {
    switched(desk_, true);
    test::set_corners(desk_, fake_, scene);
  }
  std::size_t measured() const {
    return static_cast<std::size_t>(std::ranges::count_if(desk_.values().measured, is_measured));
  }

  MatrixDesk desk_{host_, host_.doc.user_data};
};

TEST_F(MatrixDeskOnAChip, MeasuresTheTurnedChartInTime) {
  aim("chart-turned");
  desk_.measure_all();
  EXPECT_THAT(host_.last_status(), HasSubstr("enable the color picker first"));
  switched(desk_, true);
  desk_.measure_all();
  EXPECT_THAT(host_.last_status(), HasSubstr("press Set corner there"));
  set_corners("chart-turned");
  EXPECT_EQ(host_.last_status(), "Corner 4 of 4 is set.");
  desk_.measure_all();
  wire(1000);
  EXPECT_FALSE(desk_.picker().keys_enabled());
  desk_.get_color();
  EXPECT_EQ(host_.last_status(), "GET COLOR: the whole chart is being measured.");
  // A line of 19200 baud takes another 2.7 s for the 24 x 216 characters.
  wire(14'000);
  EXPECT_EQ(measured(), kPatches);
  EXPECT_FALSE(desk_.measuring_all());
  EXPECT_TRUE(desk_.picker().keys_enabled());
  desk_.calculate(host_.user);
  EXPECT_LT(patch_report(desk_.values().measured, desk_.values().coefficients)->after.mean, 2);

  desk_.measure_all();
  wire(2000);
  desk_.measure_all();
  wire(2000);
  EXPECT_EQ(host_.last_status(), "Measure all 24: stopped.");
  EXPECT_LT(measured(), 6u);
  desk_.choose_mode(kCvi);
  desk_.measure_all();
  EXPECT_FALSE(desk_.measuring_all()) << "the corners are another video mode's";
}

TEST_F(MatrixDeskOnAChip, StopsAtADoubtfulPatchAndGoesOnOnceItIsMeasuredAnew) {
  aim("chart");
  set_corners("chart");
  test::ask(chip_, "@a001*");  // exposes anew
  aim("chart-bright");
  test::ask(chip_, "@a000*");
  desk_.measure_all();
  wire(20'000);
  EXPECT_THAT(host_.last_status(), HasSubstr("Measure all 24 stopped. "));
  EXPECT_THAT(host_.last_status(), HasSubstr(" is clipped: it reads 255."));
  const std::size_t at = desk_.values().patch;
  EXPECT_EQ(measured(), at);
  desk_.get_color();
  wire(3000);
  EXPECT_GT(desk_.values().patch, at) << "the rest follows";
  wire(20'000);

  const auto ended_by = [this](const auto& something) {
    desk_.measure_all();
    wire(20'000);
    EXPECT_THAT(host_.last_status(), HasSubstr("Measure all 24 stopped. "));
    something();
    const std::size_t stopped_at = desk_.values().patch;
    desk_.get_color();
    wire(5000);
    EXPECT_THAT(host_.last_status(), testing::StartsWith("GET COLOR: "));
    return desk_.values().patch == stopped_at;
  };
  EXPECT_TRUE(ended_by([this] { desk_.clear(); }));
  EXPECT_TRUE(ended_by([this] {
    desk_.choose_mode(kCvi);
    desk_.choose_mode(kTvi);
  }));
  EXPECT_TRUE(ended_by([this] {
    switched(desk_, false);
    switched(desk_, true);
  }));
}

TEST_F(MatrixDeskOnAChip, TwoReadingsAtOnceDoNotMix) {
  aim("chart");
  switched(desk_, true);
  const auto read = [this](const std::vector<std::size_t>& patches) {
    std::vector<PerColour> colours(patches.size());
    const auto into = [](CommandLink& link, PickerPosition place, PerColour& colour) -> Task<> {
      const SteadyReading reading = co_await read_steadily(link, place);
      colour = reading.colour;
    };
    FlowSet flows;
    for (std::size_t i = 0; i < patches.size(); ++i)
      flows.spawn(into(fake_.link, middle_of("chart", patches[i]), colours[i]));
    wire(5000);
    return colours;
  };
  const std::vector<PerColour> both = read({5, 14});
  const PerColour first = read({5})[0], second = read({14})[0];
  ASSERT_GT(std::abs(first[0] - second[0]), 12);
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(both[0][c], first[c], 6) << c;
    EXPECT_NEAR(both[1][c], second[c], 6) << c;
  }
}

TEST_F(MatrixDeskOnAChip, QueuesPressesAndMovesWithTheChosenPatch) {
  aim("chart");
  switched(desk_, true);
  desk_.choose_patch_step(240);
  desk_.picker().type_x(360);
  desk_.picker().type_y(180);
  wire(1000);
  for (int press = 0; press < 3; ++press) desk_.get_color();
  EXPECT_EQ(host_.last_status(), "GET COLOR: 2 more to come.");
  wire(10'000);
  EXPECT_EQ(measured(), 3u);
  EXPECT_EQ(desk_.values().patch, 3u);
  desk_.choose_patch(14);
  EXPECT_EQ(desk_.picker().position(), middle_of("chart", 14));
  wire(1000);
  EXPECT_EQ(chip_.state().isp[0xC38] * 256 + chip_.state().isp[0xC39], middle_of("chart", 14).x);
}

TEST(ChartRun, ComplainsOfReadingsThatCannotBe) {
  MeasuredColours measured{};
  measured[18] = {200, 200, 200};
  EXPECT_EQ(reading_complaint(measured, 19, {{130, 130, 130}, true}), "");
  EXPECT_EQ(reading_complaint(measured, 19, {{210, 210, 210}, true}),
            "Neutral 8 is out of order: its brightness does not fit that of White.");
  EXPECT_EQ(reading_complaint(measured, 19, {{130, 130, 130}, false}),
            "Neutral 8 is unsteady: its three readings differ.");
  EXPECT_EQ(reading_complaint(measured, 19, {{0, 1, 0}, true}), "Neutral 8 is too dark: it reads 1.");
  EXPECT_EQ(reading_complaint(measured, 17, {{0, 60, 90}, true}), "") << "saturated";
  EXPECT_EQ(reading_complaint(measured, 19, {{-1, 130, 130}, true}), "Neutral 8: the chip did not answer.");
}

/// What comes of three readings in a row, alike in red, green and blue.
SteadyReading read_three(std::array<unsigned, 3> levels) {
  test::FakeWire wire;
  std::size_t asked = 0;
  wire.sender.chip = [&](const std::string& bytes) {
    if (bytes.starts_with("@940c*")) wire.receive("~" + upper_hex(levels.at(asked++ / 3), 2) + "^");
  };
  SteadyReading reading;
  const auto read = [](CommandLink& link, SteadyReading& into) -> Task<> {
    const PickerPosition place{1, 2};
    const SteadyReading taken = co_await read_steadily(link, place);
    into = taken;
  };
  const Flow flow(read(wire.link, reading));
  wire.advance(5000);
  return reading;
}

TEST(ChartRun, TakesTheMedianOfThreeThatAreAlike) {
  EXPECT_FALSE(read_three({100, 140, 102}).steady);
  const SteadyReading steady = read_three({100, 104, 101});
  EXPECT_TRUE(steady.steady);
  EXPECT_EQ(steady.colour, (PerColour{101, 101, 101}));
}

TEST_F(MatrixDeskOnAChip, ASaturatedColorMayReadZeroButNotAWholePatch) {
  aim("chart-warm");
  set_corners("chart-warm");
  desk_.measure_all();
  wire(20'000);
  EXPECT_THAT(host_.last_status(), HasSubstr("; 0 left. One part reads 0: Cyan."));
  EXPECT_EQ(measured(), 23u);
  desk_.calculate(host_.user);
  EXPECT_EQ(host_.last_status(), "Matrix calculated from 23 patches.");

  test::ask(chip_, "@a001*");  // exposes anew
  aim("chart-dark");
  test::ask(chip_, "@a000*");
  desk_.measure_all();
  wire(20'000);
  EXPECT_THAT(host_.last_status(), HasSubstr(" is too dark: it reads "));
}

}  // namespace
}  // namespace qv5123
