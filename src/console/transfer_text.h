#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace qv5123 {

/// "12.5 of 64.0 KiB, 1.8 KiB/s, 29 s left". Without a speed as long as no time has passed.
std::string progress_text(std::size_t sent, std::size_t total, std::chrono::milliseconds time);

/// "64.0 KiB in 35 s".
std::string summary(std::size_t bytes, std::chrono::milliseconds time);

}  // namespace qv5123
