#pragma once

#include "link/register_write.h"

namespace qv5123 {

/// Which of the brackets around what the chip is to keep are open, going by what has left for it. A chip
/// whose brackets stay open goes on keeping whatever it is told.
class OpenBrackets {
 public:
  /// All of `batch` has left.
  void left(const Batch& batch) { note(batch, true); }
  /// Some of it may have: what it opens counts, what it closes does not.
  void left_in_part(const Batch& batch) { note(batch, false); }

  /// What closes those that are open, the inner one first, each a flush of its own.
  Traffic closing() const {
    Traffic traffic;
    if (keep_) append(traffic, {reg::kKeepBracket, 0});
    if (save_) append(traffic, {reg::kSaveBracket, 0});
    return traffic;
  }

 private:
  void note(const Batch& batch, bool whole) {
    for (const RegisterWrite& write : batch) {
      if (write.value == 0 && !whole) continue;
      if (write.address == reg::kKeepBracket) keep_ = write.value != 0;
      if (write.address == reg::kSaveBracket) save_ = write.value != 0;
    }
  }

  bool keep_ = false;
  bool save_ = false;
};

}  // namespace qv5123
