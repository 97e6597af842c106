#include "link/open_brackets.h"

namespace qv5123 {

void OpenBrackets::note(const Batch& batch, bool whole) {
  for (const RegisterWrite& write : batch) {
    if (write.value == 0 && !whole) continue;
    if (write.address == reg::kKeepBracket) keep_ = write.value != 0;
    if (write.address == reg::kSaveBracket) save_ = write.value != 0;
  }
}

Traffic OpenBrackets::closing() const {
  Traffic traffic;
  if (keep_) append(traffic, {reg::kKeepBracket, 0});
  if (save_) append(traffic, {reg::kSaveBracket, 0});
  return traffic;
}

}  // namespace qv5123
