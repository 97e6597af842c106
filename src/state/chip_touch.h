#pragma once

#include <bitset>

#include "link/register_write.h"

namespace qv5123 {

/// What writes that nobody described may have changed of the pages' values on the chip. What is not known to
/// leave them alone counts as changing them: saying that a value is not known is never false.
struct ChipTouch {
  bool everything = false;
  /// Registers of single values that were written.
  std::bitset<256> registers;

  /// `value_registers` are those that belong to a value of some page.
  void add(const Batch& batch, const std::bitset<256>& value_registers);
};

}  // namespace qv5123
