#pragma once

#include <array>
#include <cstdint>
#include <optional>

/// What the pages call the chip's picture by: its signal, its light source, and its video mode, which says
/// what pages must fit.
namespace qv5123 {

/// The signals by their numbers on the chip, which pages call video modes too.
inline constexpr int kTvi = 0, kAhd = 1, kCvi = 2, kCvbs = 3;
inline constexpr int kVideoModes = 4;
inline constexpr std::array<const char*, kVideoModes> kVideoModeNames{"TVI", "AHD", "CVI", "CVBS"};
/// In the names of values.
inline constexpr std::array<const char*, kVideoModes> kVideoModeKeys{"tvi", "ahd", "cvi", "cvbs"};

inline constexpr int kLightSources = 3;
inline constexpr std::array<const char*, kLightSources> kLightSourceNames{"Outdoor", "Light-1", "Light-2"};
/// In the names of values.
inline constexpr std::array<const char*, kLightSources> kLightSourceKeys{"outdoor", "light1", "light2"};
/// Chooses the light source of what follows, 0..2.
inline constexpr std::uint8_t kLightSourceRegister = 0x4E;

/// Where the user data has the video mode, as the ISP tune page's "Video Mode" counts.
inline constexpr int kVideoModeEntry = 454;

struct VideoMode {
  int signal = 0;             ///< kTvi..kCvbs: whose matrix the chip uses
  std::optional<int> screen;  ///< of "Screen Size:"; nothing for CVBS, whose lines have neither length
};
/// Nothing for a number that is no video mode.
std::optional<VideoMode> video_mode_of(int number);
/// "2M PAL T_25fps"; empty for a number that is no video mode.
const char* video_mode_name(int number);

}  // namespace qv5123
