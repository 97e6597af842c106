#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "link/serial_device.h"

namespace qv5123 {

/// A serial device with the other end of its line in the test's hands. The device is not open at first.
class DeviceBench {
 public:
  virtual ~DeviceBench() = default;
  virtual SerialDevice& device() = 0;
  virtual std::string name() const = 0;
  /// Opens the same port once more, as another program would.
  virtual OpenResult open_again() = 0;

  /// Waits until at least `count` bytes have come out at the other end (half a minute at most) and takes them
  /// all.
  virtual std::string received(std::size_t count) = 0;
  virtual void send(std::string_view bytes) = 0;
  /// From now on the other end takes no more bytes.
  virtual void stall() = 0;
  virtual void hang_up() = 0;
  virtual void plug_in() = 0;
  /// The speed the other end sees the line set to.
  virtual std::uint32_t baud_rate() = 0;
};

struct BenchMaker {
  std::string name;
  std::function<std::unique_ptr<DeviceBench>()> make;
};

inline void PrintTo(const BenchMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The benches for this operating system's devices.
std::vector<BenchMaker> system_benches();

/// How many handles or file descriptors this process holds.
std::size_t open_handles();

}  // namespace qv5123
