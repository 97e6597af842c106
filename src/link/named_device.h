#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "link/serial_device.h"

namespace qv5123 {

/// Two devices as one: the name that it is opened by says which. For a program that runs on the simulated
/// chip and may be turned to a real port.
class NamedDevice final : public SerialDevice {
 public:
  /// `special` is opened by `special_name`, `usual` by every other name.
  NamedDevice(std::string special_name, std::unique_ptr<SerialDevice> special,
              std::unique_ptr<SerialDevice> usual)
      : special_name_(std::move(special_name)),
        special_(std::move(special)),
        usual_(std::move(usual)),
        current_(special_.get()) {}

  OpenResult open(const std::string& name, const LineSettings& settings) override {
    // The other one may still be open, and then nobody would close it any more.
    close();
    current_ = name == special_name_ ? special_.get() : usual_.get();
    return current().open(name, settings);
  }
  void close() override { current().close(); }
  Wait wait() override { return current().wait(); }
  std::size_t read(std::span<std::uint8_t> buffer) override { return current().read(buffer); }
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override {
    return current().write(bytes, keep_on);
  }

 private:
  SerialDevice& current() const { return *current_; }

  const std::string special_name_;
  const std::unique_ptr<SerialDevice> special_;
  const std::unique_ptr<SerialDevice> usual_;
  std::atomic<SerialDevice*> current_;
};

}  // namespace qv5123
