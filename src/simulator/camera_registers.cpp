#include "simulator/camera_registers.h"

#include <algorithm>

#include "simulator/auto_tasks.h"
#include "simulator/picture.h"

namespace qv5123 {
namespace {

using namespace picture_register;

constexpr std::uint8_t kMarkNone = 0x32;
constexpr std::uint8_t kMarkSet = 0x33;
constexpr std::uint8_t kMarkCheck = 0x34;

/// How far a key moves the mark, pixels.
constexpr int kKeyStep = 16;
/// By key: up, down, left, right.
constexpr PicturePoint kKeys[] = {{0, -kKeyStep}, {0, kKeyStep}, {-kKeyStep, 0}, {kKeyStep, 0}};
constexpr int kLastX = 2303;
constexpr int kLastY = 1535;

struct Range {
  std::uint16_t first, last;
};
constexpr Range kMeasured[] = {
    {kGain, kGain + 1},
    {kPickerColour, kPickerColour + 2},
    {kRedGain, kBlueGain + 1},
    {kRawColour[0], kRawColour[0]},
    {kRawColour[1], kRawColour[1]},
    {kRawColour[2], kRawColour[2]},
};

void move_mark(ChipState& chip, PicturePoint by) {
  set_isp_word(chip, kPickerX, std::clamp(isp_word(chip, kPickerX) + by.x, 0, kLastX));
  set_isp_word(chip, kPickerY, std::clamp(isp_word(chip, kPickerY) + by.y, 0, kLastY));
}

}  // namespace

bool measured_between(std::uint16_t first, std::uint16_t last) {
  return std::any_of(std::begin(kMeasured), std::end(kMeasured),
                     [&](const Range& range) { return range.last >= first && range.first <= last; });
}

void measure(const Camera& camera, ChipState& chip) {
  run_auto_tasks(camera, chip);
  const PictureSettings settings = picture_settings(chip);
  const PictureColour raw = raw_colour(camera, settings);
  for (std::size_t c = 0; c < raw.size(); ++c) chip.isp[kRawColour[c]] = raw[c];
  if (!settings.picker_on) return;
  const PictureColour picked = picker_colour(camera, settings);
  std::copy(picked.begin(), picked.end(), chip.isp.begin() + kPickerColour);
}

void fit_module(const Camera& camera, ChipState& chip) {
  set_isp_word(chip, kLensCentreX, camera.lens_centre().x);
  set_isp_word(chip, kLensCentreY, camera.lens_centre().y);
}

void steer_mark(ChipState& chip, RegisterWrite write) {
  switch (write.address) {
    case kMarkNone:
      chip.awb_mark = AwbMark::none;
      break;
    case kMarkSet:
      chip.awb_mark = AwbMark::set;
      break;
    case kMarkCheck:
      chip.awb_mark = AwbMark::check;
      break;
    case reg::kOsdKey:
      if (chip.awb_mark == AwbMark::set && write.value < std::size(kKeys))
        move_mark(chip, kKeys[write.value]);
      break;
    default:
      break;
  }
}

}  // namespace qv5123
