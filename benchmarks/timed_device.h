#pragma once

#include <chrono>
#include <memory>
#include <mutex>

#include "link/serial_device.h"

namespace qv5123 {

/// Notes when the writes to a device begin.
class TimedDevice final : public SerialDevice {
 public:
  using Clock = std::chrono::steady_clock;

  explicit TimedDevice(std::unique_ptr<SerialDevice> device) : device_(std::move(device)) {}

  OpenResult open(const std::string& name, const LineSettings& settings) override {
    return device_->open(name, settings);
  }
  void close() override { device_->close(); }
  Wait wait() override { return device_->wait(); }
  std::size_t read(std::span<std::uint8_t> buffer) override { return device_->read(buffer); }
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override {
    note(Clock::now(), bytes);
    return device_->write(bytes, keep_on);
  }

  void start_over() {
    const std::lock_guard lock(mutex_);
    writes_ = wide_ = 0;
  }
  int writes() const {
    const std::lock_guard lock(mutex_);
    return writes_;
  }
  /// How many of the writes were accesses through the wide ports (registers 0x92 and 0x94), each of which is
  /// followed by a wait.
  int wide_accesses() const {
    const std::lock_guard lock(mutex_);
    return wide_;
  }
  /// From the first write since start_over() to the last, milliseconds.
  double elapsed() const {
    const std::lock_guard lock(mutex_);
    return std::chrono::duration<double, std::milli>(last_ - first_).count();
  }

 private:
  void note(Clock::time_point now, std::span<const std::uint8_t> bytes) {
    const std::lock_guard lock(mutex_);
    if (bytes.size() > 3 && bytes[1] == '9' && (bytes[2] == '2' || bytes[2] == '4')) ++wide_;
    if (writes_++ == 0) first_ = now;
    last_ = now;
  }

  const std::unique_ptr<SerialDevice> device_;
  mutable std::mutex mutex_;
  int writes_ = 0;
  int wide_ = 0;
  Clock::time_point first_;
  Clock::time_point last_;
};

}  // namespace qv5123
