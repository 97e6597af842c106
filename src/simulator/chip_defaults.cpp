#include "simulator/chip_defaults.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "link/register_write.h"
#include "simulator/settings_places.h"

namespace qv5123 {
namespace {

constexpr int kGammaPositions[] = {0,   8,   16,  24,  32,  48,  64,  80,  96,  128, 160,
                                   192, 224, 256, 320, 384, 448, 512, 640, 768, 896, 1023};
constexpr int kGammaCeiling = 1016;

/// Red, green and blue of the 24 patches as this camera sees them before white balance.
constexpr std::uint8_t kPatches[24][3] = {
    {104, 82, 55},   {176, 150, 106}, {90, 122, 128},  {79, 108, 56},   {121, 128, 144}, {95, 189, 138},
    {193, 126, 38},  {74, 91, 136},   {174, 90, 82},   {86, 60, 89},    {143, 188, 54},  {202, 163, 40},
    {53, 61, 122},   {65, 148, 61},   {158, 54, 50},   {208, 199, 28},  {169, 86, 122},  {12, 133, 131},
    {150, 200, 214}, {172, 200, 186}, {205, 200, 142}, {226, 200, 108}, {232, 200, 98},  {240, 200, 84}};

void put(UserDataImage& image, std::size_t first, std::initializer_list<int> values) {
  for (const int value : values) image.set_entry(first++, value);
}

void put_words(UserDataImage& image, std::size_t first, std::initializer_list<int> values) {
  for (const int value : values) {
    image.set_word(first, value);
    first += 2;
  }
}

int power_law(int position, double gamma) {
  const double value = std::pow(position / 1024.0, gamma) * 1024.0;
  return value < kGammaCeiling ? static_cast<int>(value) : kGammaCeiling;
}

void put_gamma(UserDataImage& image) {
  image.set_entry(44, 3);
  for (std::size_t i = 0; i < std::size(kGammaPositions); ++i) {
    // The front curve carries two more fraction bits.
    image.set_word(2 * i, power_law(kGammaPositions[i], 1.0) << 2);
    for (const std::size_t curve : {45u, 89u, 133u}) {
      image.set_word(curve + 2 * i, power_law(kGammaPositions[i], 0.45));
    }
  }
}

void put_white_balance(UserDataImage& image) {
  put_words(image, 181, {-205, 31, -205, -36, -320, 20, -128, -10, 51, 64});
  put_words(image, 201, {0, 0, 4, -6, -8, 12});
  for (std::size_t i = 0; i < 24; ++i)
    put(image, 213 + 3 * i, {kPatches[i][0], kPatches[i][1], kPatches[i][2]});
}

/// Bright is kept as value + 64 and contrast as 64 - value.
void put_step_table(UserDataImage& image, std::size_t first, int more_noise_reduction) {
  const int nr = more_noise_reduction;
  put(image, first, {1, 4, 10, 30, 70, 130, 220});
  put(image, first + 7, {64, 64, 64, 62, 60, 58, 56});
  put(image, first + 14, {96, 110, 104, 92, 76, 58, 40});
  put(image, first + 21, {8, 12 + nr, 20 + nr, 36 + nr, 60 + nr, 90 + nr, 128 + nr});
  put(image, first + 28, {1, 2, 4, 8, 14, 20, 28});
  put(image, first + 35, {64, 56, 56, 58, 60, 62, 64});
}

void put_dynamic(UserDataImage& image) {
  put(image, 285, {40, 16, 32, 25, 4, 8, 0});
  int more_noise_reduction = 0;
  for (const std::size_t bank : {292u, 334u, 592u, 707u, 803u}) {
    put_step_table(image, bank, more_noise_reduction);
    more_noise_reduction += 4;
  }
  put(image, 376, {0, 100, 1, 60, 1, 140});
  put(image, 436, {80, 76, 70, 0});
  put(image, 583, {1});
}

/// One row per colour; 1024 stands for 1, and each row sums to 1.
void put_matrix(UserDataImage& image, std::size_t first, int off_diagonal) {
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const int code = row == column ? 1024 - 2 * off_diagonal : off_diagonal;
      image.set_word(first + 6 * row + 2 * column, code);
    }
  }
}

void put_matrices(UserDataImage& image) {
  using namespace matrix_entry;
  for (const std::size_t mode : {kTvi, kCvbs, kAhd, kCvi}) {
    put_matrix(image, mode, 0);
    put_matrix(image, mode + 18, -64);
    put_matrix(image, mode + 36, -128);
  }
}

void put_front(UserDataImage& image) {
  put(image, 452, {1, 128, 0});                    // dark adaptive, video mode
  put(image, 456, {2, 5, 5});                      // colour order, delay
  put(image, 462, {1});                            // day/night mode: colour
  put(image, 464, {3});                            // IR on/off
  put_words(image, 465, {64, 66, 66, 64});         // clamps
  put(image, 475, {2, 1, 8, 40});                  // defect pixels
  put(image, 549, {2});                            // WDR auto
  put(image, 551, {1, 128});                       // polarity, color suppress
  put(image, 553, {40, 60, 90, 110, 16, 32, 64});  // thresholds, bright offset, NR weight
  put(image, 560, {0x12, 0x23, 0x34, 0x11, 0x22, 0x33, 0x3C, 0x38, 48});
  put(image, 569, {0x12, 0x34, 0x56});
  put_words(image, 572, {320, 1024, 1280, 256, 96});
  put(image, 582, {40});  // LED dimmer
}

void put_versions(UserDataImage& image) {
  put(image, 689, {0, 1, 0, 0, 0, 2});
  put(image, 695, {0, 2, 0, 3, 0, 2});
  put(image, 701, {0, 5, 1, 2, 2, 3});
}

/// Values from `address` on.
struct Preset {
  std::uint16_t address;
  std::initializer_list<std::uint8_t> values;
};

/// The ISP registers as they are after a reset, and with a picture running where they tell about it. All
/// others read 0.
const Preset kIspPresets[] = {
    // System: chip number, revision, clocks, pins.
    {0x800, {0x51, 0x2C, 0x23, 0x00, 0x12, 0x24, 0x81, 0x01, 0xFF, 0x00, 0xA5, 0x00, 0x00}},
    // Sensor interface.
    {0x820, {0x01, 0x00, 0x00, 0x00, 0x00, 0x08, 0x00, 0x0C, 0x03, 0xD0, 0x02, 0x46, 0x10, 0x30, 0x00}},
    // Auto exposure; shutter, gain and luma are live.
    {0xA00, {0x03, 0x60, 0x24, 0x04, 0x02, 0x71, 0x01, 0x38, 0x01, 0x80, 0x20, 0x00, 0x5E, 0x00}},
    // Statistics and picker: the picker is off, its cursor in the middle, its colour that of a grey wall.
    {0xA10, {0x10}},
    {0xA20, {0x90}},
    {0xA29, {0x01}},
    {0xC38, {0x03, 0xC0, 0x02, 0x1C, 0x00, 118, 121, 116}},
    // White balance; the colour under the cursor once more.
    {0xC80, {0x01, 0x08, 0x01, 0xA0, 0x01, 0x00, 0x01, 0x84, 0x20, 0xD0}},
    {0xC92, {118}},
    {0xC96, {121}},
    {0xC9A, {116}},
    // Colour: the unit matrix, saturation, hue, gamma.
    {0xB00, {0x01}},
    {0xB08, {0x01}},
    {0xB10, {0x01}},
    {0xB14, {0x80, 0x80, 0x01}},
    // Noise and edges, lens shading.
    {0xD00, {0x01, 0x30, 0x11, 0x21, 0x18, 0x40, 0x06, 0x50}},
    {0xD10, {0x01, 0x00, 0x03, 0xC0, 0x02, 0x1C}},
    // Output and on-screen display.
    {0xE00, {0x00, 0x01, 0x80, 0x80, 0x10, 0xEB}},
    {0xE20, {0x01, 0x08, 0x06, 0x70}},
};

struct SensorPreset {
  std::uint16_t address;
  std::uint16_t value;
};
/// Sensor number and revision, streaming, exposure lines, gain.
constexpr SensorPreset kSensorPresets[] = {
    {0x0000, 0x5120}, {0x0002, 0x0003}, {0x0100, 1}, {0x0202, 312}, {0x0204, 384}};

/// Blocks that are switched on at power on.
constexpr std::uint8_t kEnabledBlocks[] = {0x84, 0x85, 0x86, 0x87, 0x8B, reg::kAeTask, reg::kAwbTask};

}  // namespace

UserDataImage factory_user_data() {
  UserDataImage image;
  put_gamma(image);
  put_white_balance(image);
  put_dynamic(image);
  put_matrices(image);
  put_words(image, 440, {1240, 1180, 1290, 310, 280, 330});  // lens shading
  put_front(image);
  put_versions(image);
  return image;
}

void reset_registers(ChipState& chip) {
  chip.direct.fill(0);
  for (const std::uint8_t address : kEnabledBlocks) chip.direct[address] = 1;
  chip.isp.fill(0);
  for (const Preset& preset : kIspPresets) {
    std::copy(preset.values.begin(), preset.values.end(), chip.isp.begin() + preset.address);
  }
  std::fill(chip.sensor.begin(), chip.sensor.end(), std::uint16_t{0});
  for (const SensorPreset& preset : kSensorPresets) chip.sensor[preset.address] = preset.value;
}

}  // namespace qv5123
