#include "link/comm_port.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kBulkPacing{1};

}  // namespace

CCommPort::CCommPort(std::unique_ptr<SerialDevice> device, CommandBuffer& command_buffer,
                     CommPortEvents events, Options options)
    : device_(std::move(device)),
      command_buffer_(command_buffer),
      events_(std::move(events)),
      options_(options) {}

CCommPort::CCommPort(std::unique_ptr<SerialDevice> device, CommandBuffer& command_buffer,
                     CommPortEvents events)
    : CCommPort(std::move(device), command_buffer, std::move(events), Options{}) {}

CCommPort::~CCommPort() {
  close();
}

OpenResult CCommPort::open(const std::string& name, const LineSettings& settings) {
  close();
  name_ = name;
  OpenResult result = device_->open(name, settings);
  if (!result.ok()) return result;
  connected_ = true;
  try {
    watcher_ = std::thread([this] { watch(); });
  } catch (const std::system_error&) {
    close();
    return {OpenError::failed, "Error while creating ThreadWatchComm, " + name};
  }
  return result;
}

void CCommPort::close() {
  {
    const MutexLock lock(pause_mutex_);
    connected_ = false;
    ++times_closed_;
  }
  closing_.notify_all();
  device_->close();
  if (watcher_.joinable()) watcher_.join();
}

void CCommPort::pause(std::chrono::milliseconds time) {
  const MutexLock lock(pause_mutex_);
  if (!connected_) return;
  // It may be open again by the time this wakes up.
  closing_.wait_for(pause_mutex_, time,
                    [this, before = times_closed_.load()] { return times_closed_ != before; });
}

std::size_t CCommPort::write(std::span<const std::uint8_t> bytes, Pacing pacing, const Follower& follower) {
  const unsigned times_closed = times_closed_;
  pause(pacing == Pacing::bulk ? kBulkPacing : kNormalPacing);
  const bool open = connected_ && times_closed_ == times_closed;
  if (open && follower.before_bytes) follower.before_bytes();
  const std::size_t sent = open && !bytes.empty() ? device_->write(bytes, follower.keep_on) : 0;
  // Whatever was sent: every sender relies on finding the buffer empty afterwards.
  command_buffer_.clear();
  return sent;
}

void CCommPort::watch() {
  while (connected_) {
    switch (device_->wait()) {
      case SerialDevice::Wait::received:
        receive_all();
        break;
      case SerialDevice::Wait::closed:
        return;
      case SerialDevice::Wait::lost:
        receive_all();
        if (connected_ && events_.lost) events_.lost();
        return;
    }
  }
}

void CCommPort::receive_all() {
  std::array<std::uint8_t, kReadSize> buffer{};
  while (connected_) {
    wait_for_room();
    const std::size_t count = device_->read(buffer);
    if (count == 0) return;
    const std::span<const std::uint8_t> bytes(buffer.data(), count);
    if (options_.mode == ReceiveMode::raw_capture) {
      raw_.insert(
          raw_.end(), bytes.begin(),
          bytes.begin() + static_cast<std::ptrdiff_t>(std::min(count, kRawCaptureSize - raw_.size())));
      continue;
    }
    queue_bytes(bytes);
    // Told after every read, not only once the driver is empty: a chip that never stops would otherwise
    // fill the queue without anyone draining it.
    if (events_.received) events_.received();
  }
}

void CCommPort::wait_for_room() {
  constexpr std::chrono::milliseconds kStep{1};
  for (auto waited = options_.room_wait; waited.count() > 0; waited -= kStep) {
    if (RingQueue::kSlots - queue_.count() > kReadSize) return;
    pause(kStep);
    if (!connected_) return;
  }
}

void CCommPort::queue_bytes(std::span<const std::uint8_t> bytes) {
  // A read that would fill the queue exactly is refused too.
  if (RingQueue::kSlots - queue_.count() <= bytes.size()) {
    if (events_.trouble) events_.trouble("m_QueueRead FULL!");
    return;
  }
  for (const std::uint8_t byte : bytes) queue_.put(byte);
  received_ += bytes.size();
}

}  // namespace qv5123
