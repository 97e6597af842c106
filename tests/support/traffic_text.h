#pragma once

#include <string>

#include "link/register_write.h"

namespace qv5123 {

/// Traffic as it looks on the wire, with "|" after each flush.
inline std::string on_wire(const Traffic& traffic) {
  std::string text;
  for (const Batch& batch : traffic) text += frames(batch) + "|";
  return text;
}

/// The same without the boundaries.
inline std::string bytes_of(const Traffic& traffic) {
  std::string text;
  for (const Batch& batch : traffic) text += frames(batch);
  return text;
}

}  // namespace qv5123
