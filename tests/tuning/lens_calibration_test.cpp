#include "tuning/lens_calibration.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/fake_wire.h"
#include "tuning/traffic_text.h"

namespace qv5123 {
namespace {

/// A chip that answers wide reads from its registers and measures a flat field through a lens.
struct PickerChip {
  test::FakeWire wire;
  int registers[0x1000] = {};
  int address = 0;
  int dark_x = -1;    ///< green reads 0 there
  int silent_x = -1;  ///< no answers from there on

  PickerChip() {
    wire.sender.chip = [this](const std::string& bytes) {
      for (std::size_t i = 0; i + 6 <= bytes.size(); i += 6) {
        take(std::stoi(bytes.substr(i + 1, 2), nullptr, 16), std::stoi(bytes.substr(i + 3, 2), nullptr, 16));
      }
    };
  }

  void take(int port, int value) {
    if (port == 0x92 || port == 0x94) address = (address << 8 | value) & 0xFFF;
    if (port == 0x93) registers[address] = value;
    if (port == 0x94 && !(pending = !pending)) answer();
  }
  bool pending = false;

  void answer() {
    const int x = registers[0xC38] * 256 + registers[0xC39];
    int value = registers[address];
    if (address >= 0xC3D && address <= 0xC3F) value = address == 0xC3E && x == dark_x ? 0 : measure(x);
    if (x == silent_x) return;
    const std::string pair = frame({static_cast<std::uint8_t>(value), 0}).substr(1, 2);
    wire.receive("~" + pair + "^");
  }

  static int measure(int x) {
    const double d2 = std::pow((x - 960) / 2048.0, 2);
    return static_cast<int>(std::lround(240 / (1 + 1.2 * d2 - 0.4 * d2 * d2)));
  }
};

struct Page {
  PickerChip chip;
  LensValues values;
  std::vector<LensSample> samples;
  LensCalibrationResult result;
  std::function<void()> after_sample = [] {};
  FlowSet flows;

  Task<> run() {
    result = co_await calibrate_lens(chip.wire.link, values, [this](const LensSample& sample) {
      samples.push_back(sample);
      after_sample();
    });
  }
  void calibrate() {
    flows.spawn(run());
    chip.wire.advance(60'000);
    EXPECT_FALSE(flows.running());
  }
  Task<> run_switch(bool on) {
    const std::string trouble = co_await switch_lens_picker(chip.wire.link, values, on);
    EXPECT_EQ(trouble, "");
  }
  void switch_picker(bool on) {
    flows.spawn(run_switch(on));
    chip.wire.advance(2'000);
  }
};

TEST(LensCalibration, SwitchesThePickerInItsOrder) {
  Page page;
  page.chip.registers[0xA29] = 0x21;
  page.chip.registers[0xA10] = 0x9F;
  page.switch_picker(true);
  EXPECT_EQ(page.chip.wire.sender.wire(),
            "@940a*@9429*@940a*@9410*"
            "@920a*@9210*@938f*@920a*@9220*@9380*@920a*@9229*@93a1*@a000*@a100*"
            "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*@93c0*");
  page.chip.wire.sender.writes.clear();
  page.switch_picker(false);
  EXPECT_EQ(page.chip.wire.sender.wire(),
            "@940a*@9429*@940a*@9410*@920a*@9210*@939f*@920a*@9220*@9390*@920a*@9229*@9321*@a001*@a101*");
}

TEST(LensCalibration, MeasuresFitsSendsAndSwitchesThePickerOff) {
  Page page;
  page.switch_picker(true);
  page.chip.wire.sender.writes.clear();
  page.calibrate();

  ASSERT_EQ(page.samples.size(), 60u);
  EXPECT_EQ(page.samples[1],
            lens_sample(272, {PickerChip::measure(272), PickerChip::measure(272), PickerChip::measure(272)}));
  EXPECT_EQ(page.result.end, CalibrationEnd::done);
  EXPECT_NEAR(page.result.calibration.centre.x, 960, 5);
  for (const LensSample& sample : page.samples) {
    EXPECT_NEAR(corrected_level(page.result.calibration, page.values, sample, 1), 240, 6) << sample.x;
  }
  EXPECT_TRUE(page.values.calibrated);
  EXPECT_FALSE(page.values.picker_on);
  EXPECT_EQ(page.chip.registers[0xA20], 0x90);

  const std::vector<std::string>& writes = page.chip.wire.sender.writes;
  EXPECT_EQ(writes[0] + writes[1] + writes[2] + writes[3] + writes[4],
            "@920c*@9238*@9300*@920c*@9239*@9310*@940c*@943d*@940c*@943e*@940c*@943f*");
  ASSERT_EQ(writes.size(), 60u * 5 + 2 + 7);
  EXPECT_EQ(writes[300], frames(lens_send_parameter1(page.values)));
  EXPECT_EQ(writes[301], frames(lens_send_parameter2(page.values)));
  EXPECT_EQ(writes.back(), "@a101*");
}

TEST(LensCalibration, StopsWhenThePickerIsSwitchedOff) {
  Page page;
  page.values.picker_on = true;
  page.after_sample = [&page] { page.values.picker_on = page.samples.size() < 3; };
  page.calibrate();
  EXPECT_EQ(page.result.end, CalibrationEnd::aborted);
  EXPECT_EQ(page.samples.size(), 3u);
  EXPECT_TRUE(page.result.calibration.samples.empty());
  EXPECT_EQ(page.chip.wire.sender.writes.size(), 3u * 5) << "nothing follows the last reading";
  EXPECT_FALSE(page.values.calibrated);
}

TEST(LensCalibration, StopsAtAReadingThatIsMissingOrZero) {
  Page dark;
  dark.values.picker_on = true;
  dark.values.parameter1 = {1, 2, 3};
  dark.chip.dark_x = 528;
  dark.calibrate();
  EXPECT_EQ(dark.result.end, CalibrationEnd::bad_reading);
  EXPECT_EQ(dark.result.message, "Calibration stopped: green reads 0 at X pos 528.");
  EXPECT_EQ(dark.values.parameter1, (PerColour{1, 2, 3}));
  EXPECT_EQ(dark.chip.wire.sender.wire().find("@64"), std::string::npos);
  EXPECT_FALSE(dark.values.picker_on);
  EXPECT_EQ(dark.chip.wire.sender.writes.back(), "@a101*");

  Page silent;
  silent.values.picker_on = true;
  silent.chip.silent_x = 272;
  silent.calibrate();
  EXPECT_EQ(silent.result.message, "Calibration stopped: no reading of red at X pos 272.");
  EXPECT_EQ(silent.samples.size(), 1u);
  EXPECT_EQ(silent.result.picker, "Color picker: no answer from 0xFA29");
  EXPECT_TRUE(silent.values.picker_on) << "the chip still measures";

  Page aborted;
  aborted.values.picker_on = true;
  aborted.chip.silent_x = 272;
  aborted.after_sample = [&aborted] {
    const auto switch_off = [&aborted] { aborted.values.picker_on = false; };
    aborted.chip.wire.scheduler.call_after(std::chrono::milliseconds(100), switch_off);
  };
  aborted.calibrate();
  EXPECT_EQ(aborted.result.end, CalibrationEnd::aborted) << "no complaint about what was switched off";
  EXPECT_EQ(aborted.result.message, "");
}

}  // namespace
}  // namespace qv5123
