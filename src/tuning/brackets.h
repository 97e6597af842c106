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

/// The closing writes of a page's save, 0xFA = 0, 0xF9 = 0, each a flush of its own. A bracket that is closed
/// twice does no harm.
inline Traffic closing_pair() {
  return flushed_singly({{reg::kKeepBracket, 0}, {reg::kSaveBracket, 0}});
}

/// A page's save on the chip: `body` between the opening writes 0xF9 = 1, 0xFA = 1, each a flush of its own,
/// and closing_pair().
inline Traffic saved(Traffic body) {
  Traffic traffic = flushed_singly({{reg::kSaveBracket, 1}, {reg::kKeepBracket, 1}});
  append(traffic, std::move(body));
  append(traffic, closing_pair());
  return traffic;
}

}  // namespace qv5123
