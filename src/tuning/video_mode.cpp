#include "tuning/video_mode.h"

#include <array>

#include "tuning/front.h"
#include "tuning/matrix.h"

namespace qv5123 {
namespace {

constexpr int k1080 = 0, k720 = 1;

/// By the numbers of "Video Mode".
constexpr std::array<VideoMode, kFrontVideoModes.size()> kModes{{{kTvi, k1080},
                                                                 {kTvi, k1080},
                                                                 {kAhd, k1080},
                                                                 {kAhd, k1080},
                                                                 {kCvi, k1080},
                                                                 {kCvi, k1080},
                                                                 {kTvi, k720},
                                                                 {kTvi, k720},
                                                                 {kAhd, k720},
                                                                 {kAhd, k720},
                                                                 {kCvi, k720},
                                                                 {kCvi, k720},
                                                                 {kCvbs, {}},
                                                                 {kCvbs, {}},
                                                                 {kTvi, k720},
                                                                 {kTvi, k720}}};

bool is_mode(int number) {
  return number >= 0 && number < static_cast<int>(kModes.size());
}

}  // namespace

std::optional<VideoMode> video_mode_of(int number) {
  if (!is_mode(number)) return std::nullopt;
  return kModes[static_cast<std::size_t>(number)];
}

const char* video_mode_name(int number) {
  return is_mode(number) ? kFrontVideoModes[static_cast<std::size_t>(number)] : "";
}

}  // namespace qv5123
