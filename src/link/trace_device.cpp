#include "link/trace_device.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "base/hex.h"
#include "base/text.h"

namespace qv5123 {
namespace {

class TracedDevice final : public SerialDevice {
 public:
  TracedDevice(std::unique_ptr<SerialDevice> device, std::shared_ptr<Trace> trace)
      : device_(std::move(device)), trace_(std::move(trace)) {}

  OpenResult open(const std::string& name, const LineSettings& settings) override {
    return device_->open(name, settings);
  }
  void close() override { device_->close(); }
  Wait wait() override { return device_->wait(); }
  std::size_t read(std::span<std::uint8_t> buffer) override {
    const std::size_t count = device_->read(buffer);
    if (count > 0) trace_->note('<', buffer.first(count));
    return count;
  }
  /// Noted before it leaves, so that it stands before the answer.
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override {
    if (!bytes.empty()) trace_->note('>', bytes);
    return device_->write(bytes, keep_on);
  }

 private:
  const std::unique_ptr<SerialDevice> device_;
  const std::shared_ptr<Trace> trace_;
};

char shown(std::uint8_t byte) {
  return byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
}

/// Right-aligned, with microseconds.
std::string in_seconds(double time) {
  constexpr std::size_t kWidth = 12;
  constexpr int kDecimals = 6;
  std::string text = fixed(time, kDecimals);
  text.insert(0, kWidth - std::min(kWidth, text.size()), ' ');
  return text;
}

}  // namespace

Trace::Trace(const std::filesystem::path& path, std::function<void()> failed)
    : failed_(std::move(failed)), out_(path == "-" ? std::cerr : file_) {
  if (path != "-") file_.open(path, std::ios::binary | std::ios::app);
  ok_ = out_.good();
  if (ok_) write("# " + iso_time(std::chrono::system_clock::now()) + "\n");
}

void Trace::note(char direction, std::span<const std::uint8_t> bytes) {
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start_;
  std::string line = in_seconds(time.count());
  line += std::string(" ") + direction;
  std::string characters;
  for (const std::uint8_t byte : bytes) {
    line += ' ' + lower_hex(byte);
    characters += shown(byte);
  }
  write(line + " |" + characters + "|\n");
}

void Trace::write(const std::string& line) {
  const MutexLock lock(mutex_);
  out_ << line << std::flush;
  if (!out_ && ok_.exchange(false) && failed_) failed_();
}

std::unique_ptr<SerialDevice> traced(std::unique_ptr<SerialDevice> device, std::shared_ptr<Trace> trace) {
  return std::make_unique<TracedDevice>(std::move(device), std::move(trace));
}

}  // namespace qv5123
