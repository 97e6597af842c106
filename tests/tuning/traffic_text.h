#pragma once

#include <cstddef>
#include <string>

#include "link/register_write.h"

namespace qv5123 {

/// Traffic as text to compare with: "0352 0301|0600" is a flush of two writes, then one of a single write.
inline std::string traffic_text(const Traffic& traffic) {
  std::string text;
  for (const Batch& batch : traffic) {
    if (!text.empty()) text += '|';
    for (std::size_t i = 0; i < batch.size(); ++i) {
      if (i > 0) text += ' ';
      text += frame(batch[i]).substr(1, 4);
    }
  }
  return text;
}

}  // namespace qv5123
