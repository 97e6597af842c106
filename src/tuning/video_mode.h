#pragma once

#include <cstddef>
#include <optional>

/// What the chip's video mode says of its picture, for pages that must fit it.
namespace qv5123 {

/// Where the user data has it, as the ISP tune page's "Video Mode" counts.
inline constexpr std::size_t kVideoModeEntry = 454;

struct VideoMode {
  int signal = 0;             ///< kTvi..kCvbs: whose matrix the chip uses
  std::optional<int> screen;  ///< of "Screen Size:"; nothing for CVBS, whose lines have neither length
};
/// Nothing for a number that is no video mode.
std::optional<VideoMode> video_mode_of(int number);
/// "2M PAL T_25fps"; empty for a number that is no video mode.
const char* video_mode_name(int number);

}  // namespace qv5123
