#include "simulator/chip_defaults.h"

#include <cmath>
#include <initializer_list>

#include "link/register_write.h"

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
  for (const std::size_t mode : {382u, 635u, 749u, 845u}) {
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

struct Preset {
  std::uint16_t address;
  std::uint8_t value;
};

/// ISP registers with a meaning to the tool.
constexpr Preset kIspPresets[] = {
    {0x922, 0x12},                                               // command register
    {0xA10, 0x10}, {0xA20, 0x90}, {0xA29, 0x00},                 // colour picker off
    {0xC38, 0x03}, {0xC39, 0xC0}, {0xC3A, 0x02}, {0xC3B, 0x1C},  // cursor in the middle of 1920x1080
    {0xC3D, 118},  {0xC3E, 121},  {0xC3F, 116},                  // measured colour
    {0xC92, 118},  {0xC96, 121},  {0xC9A, 116},                  // the same, for the white lines
};

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
  // Registers without a meaning of their own differ from each other, so that a mixed up address shows.
  for (std::size_t i = 0; i < chip.isp.size(); ++i)
    chip.isp[i] = static_cast<std::uint8_t>(i * 37 + (i >> 8));
  for (const Preset& preset : kIspPresets) chip.isp[preset.address] = preset.value;
  for (std::size_t i = 0; i < chip.sensor.size(); ++i)
    chip.sensor[i] = static_cast<std::uint16_t>(i ^ 0x5120);
}

}  // namespace qv5123
