#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "link/register_write.h"

/// A register script: what left for the chip, to be sent once more. A line is a flush, hex pairs of direct
/// register and value between blanks ("9209 9222 93cc"), or a pause ("wait 1500", ms), or a remark behind
/// "#".
namespace qv5123 {

/// A pause between two writes of a journal is not made longer than this: people think longer, chips do not.
inline constexpr std::chrono::milliseconds kLongestReplayPause{10'000};
/// What a script may ask for.
inline constexpr int kLongestReplayWait = 3'600'000;

struct ReplayStep {
  std::chrono::milliseconds wait{0};  ///< before the flush
  Batch flush;                        ///< empty only where a script ends with a pause
  std::size_t line = 0;               ///< of the script, from 1
  friend bool operator==(const ReplayStep&, const ReplayStep&) = default;
};

struct ReplayScript {
  std::vector<ReplayStep> steps;
  std::string fault;  ///< the first line that is none, "line 3: ..."; empty where all are
};

ReplayScript read_replay_script(std::string_view text);
/// The line of a flush, without its end.
std::string replay_line(const Batch& flush);

}  // namespace qv5123
