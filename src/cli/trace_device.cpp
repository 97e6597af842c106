#include "cli/trace_device.h"

#include <algorithm>
#include <utility>

#include "base/atomic_file.h"
#include "base/hex.h"
#include "base/text.h"
#include "cli/complaint.h"
#include "cli/numbers.h"

namespace qv5123 {
namespace {

class TracedDevice final : public SerialDevice {
 public:
  TracedDevice(std::unique_ptr<SerialDevice> device, Trace& trace)
      : device_(std::move(device)), trace_(trace) {}

  OpenResult open(const std::string& name, const LineSettings& settings) override {
    return device_->open(name, settings);
  }
  void close() override { device_->close(); }
  Wait wait() override { return device_->wait(); }
  std::size_t read(std::span<std::uint8_t> buffer) override {
    const std::size_t count = device_->read(buffer);
    if (count > 0) trace_.note('<', buffer.first(count));
    return count;
  }
  /// Noted before it leaves, so that it stands before the answer.
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override {
    if (!bytes.empty()) trace_.note('>', bytes);
    return device_->write(bytes, keep_on);
  }

 private:
  const std::unique_ptr<SerialDevice> device_;
  Trace& trace_;
};

char shown(std::uint8_t byte) {
  return byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
}

}  // namespace

Trace::Trace(const std::filesystem::path& path) : file_(path, std::ios::binary | std::ios::trunc) {
  if (!file_) refuse("Cannot write " + path_text(path));
}

void Trace::note(char direction, std::span<const std::uint8_t> bytes) {
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start_;
  constexpr std::size_t kTimeWidth = 12;
  std::string line = fixed(time.count(), 6);
  line.insert(0, kTimeWidth - std::min(kTimeWidth, line.size()), ' ');
  line += std::string(" ") + direction;
  std::string characters;
  for (const std::uint8_t byte : bytes) {
    line += ' ' + lower_hex(byte);
    characters += shown(byte);
  }
  const MutexLock lock(mutex_);
  file_ << line << " |" << characters << "|\n" << std::flush;
  if (!file_) ok_ = false;
}

std::unique_ptr<SerialDevice> traced(std::unique_ptr<SerialDevice> device, Trace& trace) {
  return std::make_unique<TracedDevice>(std::move(device), trace);
}

}  // namespace qv5123
