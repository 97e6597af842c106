#pragma once

#include <chrono>

#include "base/delay.h"
#include "base/task.h"

namespace qv5123 {

/// How often those look who wait for a sign of the chip.
inline constexpr std::chrono::milliseconds kLookForSigns{10};

/// Waits until what `signs` tells, which changes whenever something comes from the chip, has stayed the same
/// for `quiet`, for at most `longest`. False when it has not.
template <class Signs>
Task<bool> wait_for_quiet(Scheduler& scheduler, Signs signs, std::chrono::milliseconds quiet,
                          std::chrono::milliseconds longest) {
  const std::chrono::milliseconds start = scheduler.now();
  std::chrono::milliseconds heard = start;
  auto last = signs();
  while (scheduler.now() - heard < quiet && scheduler.now() - start < longest) {
    co_await Delay(scheduler, kLookForSigns);
    if (signs() == last) continue;
    last = signs();
    heard = scheduler.now();
  }
  co_return scheduler.now() - heard >= quiet;
}

}  // namespace qv5123
