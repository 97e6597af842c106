#include "simulator/chip_state.h"

#include "link/register_write.h"

namespace qv5123 {

bool keeping(const ChipState& state) {
  return state.direct[reg::kKeepBracket] != 0;
}

int bracket_depth(const ChipState& state) {
  return (keeping(state) ? 1 : 0) + (state.direct[reg::kSaveBracket] != 0 ? 1 : 0);
}

}  // namespace qv5123
