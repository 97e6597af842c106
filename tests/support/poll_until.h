#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <source_location>
#include <stdexcept>
#include <thread>

namespace qv5123::test {

/// However slow the machine is, who waits longer waits in vain.
inline constexpr std::chrono::seconds kInVain{60};

/// Asks until `reached` says yes. Who waits in vain fails, and leaves the test.
template <class Reached>
void poll_until(const Reached& reached, std::chrono::seconds at_most = kInVain,
                const std::source_location& from = std::source_location::current()) {
  const auto end = std::chrono::steady_clock::now() + at_most;
  while (!reached()) {
    if (std::chrono::steady_clock::now() > end) {
      ADD_FAILURE_AT(from.file_name(), static_cast<int>(from.line())) << "waited in vain";
      throw std::runtime_error("waited in vain");
    }
    std::this_thread::yield();
  }
}

}  // namespace qv5123::test
