#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
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
/// they are, with a point for those that cannot be shown. A record that is there goes on: each run begins
/// with a line "# 2026-11-22T02:51:01.000Z". The file "-" is stderr.
class Trace {
 public:
  /// `failed` is called once, on any thread, when the file does not take a line any more. May be empty.
  explicit Trace(const std::filesystem::path& path, std::function<void()> failed = {});

  /// From any thread.
  void note(char direction, std::span<const std::uint8_t> bytes);
  /// False where the file cannot be made, and once a line could not be written.
  bool ok() const { return ok_; }

 private:
  void write(const std::string& line);

  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  const std::function<void()> failed_;
  Mutex mutex_;
  std::ofstream file_ GUARDED_BY(mutex_);
  std::ostream& out_ GUARDED_BY(mutex_);
  std::atomic<bool> ok_{true};
};

/// A device with a record of what it reads and writes.
std::unique_ptr<SerialDevice> traced(std::unique_ptr<SerialDevice> device, std::shared_ptr<Trace> trace);

}  // namespace qv5123
