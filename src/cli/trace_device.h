#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>

#include "base/mutex.h"
#include "link/serial_device.h"

namespace qv5123 {

/// A record of what goes over a line. Each write and each read is a line of the file:
///
///       0.151034 > 40 39 34 30 39 2a |@9409*|
///       0.158201 < 7e 31 32 5e |~12^|
///
/// seconds since the record began, the direction (> to the chip, < from it), the bytes, and the characters
/// they are, with a point for those that cannot be shown.
class Trace {
 public:
  /// Throws a Complaint when the file cannot be made.
  explicit Trace(const std::filesystem::path& path);

  /// From any thread.
  void note(char direction, std::span<const std::uint8_t> bytes);
  /// False once a line could not be written.
  bool ok() const { return ok_; }

 private:
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  Mutex mutex_;
  std::ofstream file_ GUARDED_BY(mutex_);
  std::atomic<bool> ok_{true};
};

/// A device with a record of what it reads and writes. The trace must outlive it.
std::unique_ptr<SerialDevice> traced(std::unique_ptr<SerialDevice> device, Trace& trace);

}  // namespace qv5123
