#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "link/serial_device.h"

namespace qv5123 {

/// A device that is made when it is first opened, for one that costs something and is seldom used.
class DeferredDevice final : public SerialDevice {
 public:
  using Make = std::function<std::unique_ptr<SerialDevice>()>;

  explicit DeferredDevice(Make make) : make_(std::move(make)) {}

  OpenResult open(const std::string& name, const LineSettings& settings) override {
    if (!device_) {
      owned_ = make_();
      device_ = owned_.get();
    }
    return device_.load()->open(name, settings);
  }
  void close() override {
    if (SerialDevice* device = device_) device->close();
  }
  Wait wait() override { return device_.load()->wait(); }
  std::size_t read(std::span<std::uint8_t> buffer) override { return device_.load()->read(buffer); }
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override {
    return device_.load()->write(bytes, keep_on);
  }

 private:
  const Make make_;
  std::unique_ptr<SerialDevice> owned_;
  std::atomic<SerialDevice*> device_{nullptr};
};

}  // namespace qv5123
