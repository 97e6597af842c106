#pragma once

#include <utility>

#include "link/register_write.h"

namespace qv5123 {

/// A block of settings that the chip is to keep: `block` between 1 and 0 written to the bracket, each a flush
/// of its own.
inline Traffic kept(Traffic block) {
  Traffic traffic;
  append(traffic, RegisterWrite{reg::kKeepBracket, 1});
  append(traffic, std::move(block));
  append(traffic, RegisterWrite{reg::kKeepBracket, 0});
  return traffic;
}

}  // namespace qv5123
