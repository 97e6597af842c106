#include "link/line_settings.h"

#include <algorithm>

namespace qv5123 {

std::string settings_fault(const LineSettings& settings) {
  if (settings.baud_rate == 0) return "a baud rate of 0 is none";
  if (settings.data_bits < 5 || settings.data_bits > 8)
    return std::to_string(settings.data_bits) + " data bits are not between 5 and 8";
  if (settings.parity > 4)
    return "parity code " + std::to_string(settings.parity) + " is not between 0 and 4";
  if (settings.stop_bits > 2)
    return "stop bit code " + std::to_string(settings.stop_bits) + " is not between 0 and 2";
  return {};
}

std::chrono::nanoseconds line_time(std::size_t bytes, const LineSettings& settings) {
  if (settings.baud_rate == 0) return {};
  constexpr std::int64_t kHalfSecond = 500'000'000;
  constexpr std::size_t kMostBytes = 500'000'000;  // far beyond any transfer, and the product stays in range
  const std::int64_t start_and_stop = 2 + 2 + std::min<int>(settings.stop_bits, 2);
  const std::int64_t data_and_parity =
      2 * std::min<int>(settings.data_bits, 8) + (settings.parity != 0 ? 2 : 0);
  const auto half_bits =
      (start_and_stop + data_and_parity) * static_cast<std::int64_t>(std::min(bytes, kMostBytes));
  return std::chrono::nanoseconds(half_bits * kHalfSecond / settings.baud_rate);
}

}  // namespace qv5123
