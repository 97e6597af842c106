#include "link/in_process_device.h"

#include <algorithm>
#include <utility>

#include "link/line_settings.h"
#include "link/serial_device.h"

namespace qv5123 {

InProcessDevice::InProcessDevice(Peer peer, Pace pace) : peer_(std::move(peer)), pace_(std::move(pace)) {}

InProcessDevice::~InProcessDevice() {
  close();
}

OpenResult InProcessDevice::open(const std::string& name, const LineSettings& settings) {
  const MutexLock lifecycle(lifecycle_);
  const MutexLock lock(mutex_);
  if (open_) return open_error(OpenError::busy, name, "this program");
  if (!plugged_) return open_error(OpenError::not_found, name);
  const std::string fault = settings_fault(settings);
  if (!fault.empty()) return open_error(OpenError::bad_settings, name, fault);
  settings_ = settings;
  received_.clear();
  lost_ = false;
  open_ = true;
  gate_.open();
  return {};
}

void InProcessDevice::close() {
  const MutexLock lifecycle(lifecycle_);
  gate_.shut();
  {
    const MutexLock lock(mutex_);
    open_ = false;
    changed_.notify_all();
  }
  gate_.await_empty();
}

SerialDevice::Wait InProcessDevice::wait() {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return Wait::closed;
  const MutexLock lock(mutex_);
  changed_.wait(mutex_, [this]() REQUIRES(mutex_) { return !up() || !received_.empty(); });
  if (!open_) return Wait::closed;
  return received_.empty() ? Wait::lost : Wait::received;
}

std::size_t InProcessDevice::read(std::span<std::uint8_t> buffer) {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return 0;
  const MutexLock lock(mutex_);
  const std::size_t count = std::min(buffer.size(), received_.size());
  const auto end = received_.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(received_.begin(), end, buffer.begin());
  received_.erase(received_.begin(), end);
  return count;
}

std::size_t InProcessDevice::write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on) {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return 0;
  // A paced line hands its bytes over in small pieces, as a chip would see them come in.
  constexpr std::size_t kPacedPiece = 16;
  const std::size_t piece = pace_ ? kPacedPiece : bytes.size();
  auto due = std::chrono::steady_clock::now();
  std::size_t done = 0;
  const auto go_on = [&] { return !keep_on || keep_on(done); };
  while (done < bytes.size()) {
    const auto part = bytes.subspan(done, std::min(piece, bytes.size() - done));
    due += time_for(part.size());
    if (!wait_until(due, go_on)) break;
    peer_(part);
    done += part.size();
  }
  return done;
}

std::chrono::nanoseconds InProcessDevice::time_for(std::size_t bytes) const {
  constexpr std::chrono::nanoseconds kLongest = std::chrono::hours(24);  // keeps the due time in range
  return pace_ ? std::min(pace_(bytes, settings()), kLongest) : std::chrono::nanoseconds(0);
}

/// False when the line went down meanwhile, or `keep_on` said so.
bool InProcessDevice::wait_until(std::chrono::steady_clock::time_point due,
                                 const std::function<bool()>& keep_on) {
  const MutexLock lock(mutex_);
  while (pace_ && up() && std::chrono::steady_clock::now() < due) {
    const auto ask_at = std::chrono::steady_clock::now() + kAskEvery;
    changed_.wait_until(mutex_, std::min(due, ask_at), [this]() REQUIRES(mutex_) { return !up(); });
    const MutexUnlock unlocked(mutex_);
    if (!keep_on()) return false;
  }
  return up();
}

void InProcessDevice::deliver(std::span<const std::uint8_t> bytes) {
  const MutexLock lock(mutex_);
  if (!up()) return;
  received_.insert(received_.end(), bytes.begin(), bytes.end());
  changed_.notify_all();
}

void InProcessDevice::hang_up() {
  const MutexLock lock(mutex_);
  plugged_ = false;
  lost_ = true;
  changed_.notify_all();
}

void InProcessDevice::plug_in() {
  const MutexLock lock(mutex_);
  plugged_ = true;
}

LineSettings InProcessDevice::settings() const {
  const MutexLock lock(mutex_);
  return settings_;
}

}  // namespace qv5123
