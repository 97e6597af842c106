#pragma once

#include <utility>

#include "link/register_write.h"

namespace qv5123 {

/// `block` between 1 and 0 written to `bracket`, each a flush of its own.
inline Traffic bracketed(std::uint8_t bracket, Traffic block) {
  Traffic traffic;
  append(traffic, RegisterWrite{bracket, 1});
  append(traffic, std::move(block));
  append(traffic, RegisterWrite{bracket, 0});
  return traffic;
}

/// A block of settings that the chip is to keep.
inline Traffic kept(Traffic block) {
  return bracketed(reg::kKeepBracket, std::move(block));
}

/// A whole page's save: the block to keep, and around it the bracket that makes the chip store it.
inline Traffic saved(Traffic block) {
  return bracketed(reg::kSaveBracket, kept(std::move(block)));
}

}  // namespace qv5123
