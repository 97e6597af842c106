#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "base/task.h"
#include "link/command_link.h"
#include "tuning/matrix.h"

/// "Measure all 24": the places of all patches from those of the four at the corners, and their readings.
namespace qv5123 {

/// The patches at the corners of the chart, round it from the first.
inline constexpr std::array<std::size_t, 4> kCornerPatches = {0, 5, 23, 18};
/// Where the user has put the cursor on them, in that order; empty where he has not yet.
using ChartCorners = std::array<std::optional<PickerPosition>, kCornerPatches.size()>;
/// The corner that a patch is; nothing for the others.
std::optional<std::size_t> corner_of(std::size_t patch);

/// The middles of all patches by the perspective of the four. Nothing unless all are set and each is a corner
/// of what they span.
std::optional<std::array<PickerPosition, kPatches>> patch_places(const ChartCorners& corners);

/// Median of three readings, each colour by itself.
struct SteadyReading {
  PerColour colour{};  ///< -1 where the chip did not answer
  bool steady = true;  ///< no colour differs by more than an eighth of itself, or by 6 counts
};
/// Brings the cursor there with one flush and reads as fast as the chip answers: about 0.7 s at 19200 baud.
/// Nobody moves the cursor or asks the chip meanwhile. `registers` are those of red, green and blue.
Task<SteadyReading> read_steadily(CommandLink& link, PickerPosition place,
                                  std::array<int, 3> registers = kPickerColourRegisters);

/// What is wrong with the reading of `patch`, and with its brightness beside the patches measured before;
/// empty when nothing is.
std::string reading_complaint(const MeasuredColours& measured, std::size_t patch,
                              const SteadyReading& reading);

}  // namespace qv5123
