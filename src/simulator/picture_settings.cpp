#include "simulator/picture_settings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "link/register_write.h"
#include "simulator/settings_places.h"

namespace qv5123 {
namespace {

constexpr double kGainUnit = 256;
constexpr double kShadingUnit = 1024;
constexpr double kMatrixUnit = 1024;

constexpr std::uint8_t kGammaEnable = 0x84;
constexpr std::size_t kLightSources = 3;

constexpr std::size_t kWeightEntries = 201;
constexpr std::size_t kOrientationEntry = 291;
constexpr std::size_t kShadingEntries = 440;
constexpr std::size_t kVideoModeEntry = 454;
constexpr std::size_t kDayNightEntry = 462;
constexpr int kNight = 2;

using namespace matrix_entry;
/// Whose matrices each video mode uses.
constexpr std::size_t kMatrixOfMode[] = {kTvi, kTvi, kAhd, kAhd, kCvi,  kCvi,  kTvi, kTvi,
                                         kAhd, kAhd, kCvi, kCvi, kCvbs, kCvbs, kTvi, kTvi};

constexpr std::size_t kCurveEntries[] = {45, 89, 133};
constexpr int kCurveScale = 1023;
constexpr int kCurvePositions[] = {0,   8,   16,  24,  32,  48,  64,  80,  96,  128, 160,
                                   192, 224, 256, 320, 384, 448, 512, 640, 768, 896, 1023};

bool bit(const ChipState& chip, std::uint16_t address, unsigned number) {
  return (chip.isp[address] >> number & 1) != 0;
}

int signed_word(const UserDataImage& data, std::size_t entry) {
  const int word = data.word(entry);
  return word >= 0x8000 ? word - 0x10000 : word;
}

std::size_t light_source(const ChipState& chip) {
  return chip.direct[kLightSourceChoice] % kLightSources;
}

ColourMatrix matrix_in_force(const ChipState& chip) {
  const std::size_t mode = chip.user_data.entry(kVideoModeEntry);
  const std::size_t base = mode < std::size(kMatrixOfMode) ? kMatrixOfMode[mode] : kTvi;
  ColourMatrix matrix{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const std::size_t entry = base + 18 * light_source(chip) + 6 * row + 2 * column;
      matrix[row][column] = signed_word(chip.user_data, entry) / kMatrixUnit;
    }
  }
  return matrix;
}

/// Straight lines between the points of a gamma curve.
std::array<std::uint8_t, 256> curve_levels(const UserDataImage& data, std::size_t entries) {
  std::array<std::uint8_t, 256> levels{};
  std::size_t next = 1;
  for (std::size_t level = 0; level < levels.size(); ++level) {
    const double position = static_cast<double>(level) * kCurveScale / 255;
    while (position > kCurvePositions[next]) ++next;
    const double start = kCurvePositions[next - 1];
    const double share = (position - start) / (kCurvePositions[next] - start);
    const double from = std::min(data.word(entries + 2 * next - 2), kCurveScale);
    const double to = std::min(data.word(entries + 2 * next), kCurveScale);
    levels[level] = static_cast<std::uint8_t>(std::lround((from + share * (to - from)) * 255 / kCurveScale));
  }
  return levels;
}

void take_shading(const ChipState& chip, PictureSettings& settings) {
  settings.shading = bit(chip, picture_register::kShadingControl, 0);
  for (std::size_t c = 0; c < 3; ++c) {
    settings.shading_p1[c] = chip.user_data.word(kShadingEntries + 2 * c) / kShadingUnit;
    settings.shading_p2[c] = chip.user_data.word(kShadingEntries + 6 + 2 * c) / kShadingUnit;
  }
  settings.shading_centre = {isp_word(chip, picture_register::kLensCentreX),
                             isp_word(chip, picture_register::kLensCentreY)};
}

void take_picker(const ChipState& chip, PictureSettings& settings) {
  settings.picker_on = bit(chip, picture_register::kPickerControl, 7);
  settings.picker_behind_shading = bit(chip, picture_register::kStatControl, 4);
  settings.cursor = {isp_word(chip, picture_register::kPickerX), isp_word(chip, picture_register::kPickerY)};
  settings.picker_edge = 8 << std::min(chip.isp[picture_register::kPickerControl] & 3, 2);
  settings.mark = chip.awb_mark;
}

void take_output(const ChipState& chip, PictureSettings& settings) {
  settings.gamma = chip.direct[kGammaEnable] != 0;
  for (std::size_t c = 0; c < 3; ++c) settings.curves[c] = curve_levels(chip.user_data, kCurveEntries[c]);
  settings.mirror = (chip.user_data.entry(kOrientationEntry) & 1) != 0;
  settings.flip = (chip.user_data.entry(kOrientationEntry) & 2) != 0;
  settings.black_and_white = chip.user_data.entry(kDayNightEntry) == kNight;
}

}  // namespace

int isp_word(const ChipState& chip, std::uint16_t address) {
  return chip.isp[address & 0xFFF] * 256 + chip.isp[(address + 1) & 0xFFF];
}

void set_isp_word(ChipState& chip, std::uint16_t address, int value) {
  chip.isp[address & 0xFFF] = high_byte(value);
  chip.isp[(address + 1) & 0xFFF] = low_byte(value);
}

PictureSettings picture_settings(const ChipState& chip) {
  PictureSettings settings;
  settings.gain = isp_word(chip, picture_register::kGain) / kGainUnit;
  settings.white_balance = {isp_word(chip, picture_register::kRedGain) / kGainUnit,
                            isp_word(chip, picture_register::kGreenGain) / kGainUnit,
                            isp_word(chip, picture_register::kBlueGain) / kGainUnit};
  settings.white = WhiteTest(chip.user_data);
  take_shading(chip, settings);
  settings.colour_processing = bit(chip, picture_register::kPipeControl, 4);
  settings.matrix = matrix_in_force(chip);
  take_picker(chip, settings);
  take_output(chip, settings);
  return settings;
}

Light white_balance_weights(const ChipState& chip) {
  const std::size_t entry = kWeightEntries + 4 * light_source(chip);
  const auto factor = [&](std::size_t at) {
    return 1 + std::clamp(signed_word(chip.user_data, at), -50, 50) / kGainUnit;
  };
  return {factor(entry), 1, factor(entry + 2)};
}

}  // namespace qv5123
