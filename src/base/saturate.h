#pragma once

#include <cmath>
#include <limits>

namespace qv5123 {

/// Truncates towards zero like a float to integer conversion, but for every input: values beyond the range
/// of int become its nearest end, NaN becomes 0.
inline int saturate_to_int(double value) {
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
  if (value <= static_cast<double>(std::numeric_limits<int>::min())) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

}  // namespace qv5123
