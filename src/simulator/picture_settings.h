#pragma once

#include <array>
#include <cstdint>

#include "simulator/camera.h"
#include "simulator/chip_state.h"
#include "simulator/white_test.h"

namespace qv5123 {

/// The ISP registers that the picture depends on, and those in which the chip says what it measures.
namespace picture_register {
inline constexpr std::uint16_t kGain = 0xA08;  ///< of the sensor's amplifier, two bytes, 256 = 1x
inline constexpr std::uint16_t kStatControl =
    0xA10;  ///< bit 4: the picker sits behind the shading correction
inline constexpr std::uint16_t kPipeControl = 0xA20;  ///< bit 4: colour processing, that is the matrix
inline constexpr std::uint16_t kPickerControl =
    0xA29;                                             ///< bit 7: on; bits 1..0: edge of the square 8, 16, 32
inline constexpr std::uint16_t kPickerX = 0xC38;       ///< two bytes, pixels
inline constexpr std::uint16_t kPickerY = 0xC3A;       ///< two bytes, pixels
inline constexpr std::uint16_t kPickerColour = 0xC3D;  ///< red, green, blue
inline constexpr std::uint16_t kRedGain = 0xC82;       ///< white balance, two bytes, 256 = 1x
inline constexpr std::uint16_t kGreenGain = 0xC84;
inline constexpr std::uint16_t kBlueGain = 0xC86;
inline constexpr std::array<std::uint16_t, 3> kRawColour = {0xC92, 0xC96, 0xC9A};  ///< red, green, blue
inline constexpr std::uint16_t kShadingControl = 0xD10;  ///< bit 0: lens shading correction
inline constexpr std::uint16_t kLensCentreX = 0xD12;     ///< two bytes, pixels
inline constexpr std::uint16_t kLensCentreY = 0xD14;     ///< two bytes, pixels
}  // namespace picture_register

/// A quantity in two ISP registers, high byte first.
int isp_word(const ChipState& chip, std::uint16_t address);
void set_isp_word(ChipState& chip, std::uint16_t address, int value);

/// What the chip has been told, as far as the picture shows it.
struct PictureSettings {
  double gain = 1;               ///< of the sensor's amplifier
  Light white_balance{1, 1, 1};  ///< factors
  WhiteTest white;               ///< what the AWB task takes for white

  bool shading = true;  ///< lens shading correction: gain 1 + p1 d^2 - p2 d^4 about the centre
  Light shading_p1{};
  Light shading_p2{};
  PicturePoint shading_centre;

  bool colour_processing = true;
  ColourMatrix matrix{};  ///< of the video mode and light source in force

  bool picker_on = false;
  bool picker_behind_shading = true;
  PicturePoint cursor;
  int picker_edge = 16;  ///< pixels
  AwbMark mark = AwbMark::none;

  bool gamma = true;
  std::array<std::array<std::uint8_t, 256>, 3> curves{};  ///< by level
  bool mirror = false;
  bool flip = false;
  bool black_and_white = false;

  friend bool operator==(const PictureSettings&, const PictureSettings&) = default;
};

PictureSettings picture_settings(const ChipState& chip);

/// What of the light source in force makes white warmer or cooler: factors for red and blue.
Light white_balance_weights(const ChipState& chip);

}  // namespace qv5123
