#include "console/transfer_text.h"

#include <cstdio>

namespace qv5123 {
namespace {

std::string kibibytes(double bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", bytes / 1024);
  return text;
}

}  // namespace

std::string progress_text(std::size_t sent, std::size_t total, std::chrono::milliseconds time) {
  std::string text =
      kibibytes(static_cast<double>(sent)) + " of " + kibibytes(static_cast<double>(total)) + " KiB";
  if (time.count() <= 0 || sent == 0) return text;
  const double speed = static_cast<double>(sent) * 1000 / static_cast<double>(time.count());
  const auto left = static_cast<long long>(static_cast<double>(total - sent) / speed + 0.5);
  return text + ", " + kibibytes(speed) + " KiB/s, " + std::to_string(left) + " s left";
}

std::string summary(std::size_t bytes, std::chrono::milliseconds time) {
  return kibibytes(static_cast<double>(bytes)) + " KiB in " + std::to_string((time.count() + 500) / 1000) +
         " s";
}

}  // namespace qv5123
