#include "simulator/board_server.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kReopenEvery{500};

TimePoint now() {
  return std::chrono::steady_clock::now();
}

}  // namespace

BoardServer::BoardServer(SerialDevice& device, SimulatedChip& chip, const LineOptions& options)
    : device_(device), line_(chip, options) {}

OpenResult BoardServer::start(const std::string& name, const LineSettings& settings) {
  name_ = name;
  settings_ = settings;
  const OpenResult result = open();
  if (!result.ok()) return result;
  {
    const MutexLock lock(mutex_);
    line_.plug_in();
    line_.host_opened(now());
  }
  reader_ = std::thread(&BoardServer::read_loop, this);
  worker_ = std::thread(&BoardServer::work_loop, this);
  return result;
}

OpenResult BoardServer::open() {
  OpenResult result = device_.open(name_, settings_);
  if (result.ok() && on_open_) on_open_();
  return result;
}

void BoardServer::stop() {
  {
    const MutexLock lock(mutex_);
    stopping_ = true;
    changed_.notify_all();
  }
  device_.close();
  if (worker_.joinable()) worker_.join();
  // The worker may have opened the device once more before it saw that it is to stop.
  device_.close();
  if (reader_.joinable()) reader_.join();
}

void BoardServer::host_opened() {
  const MutexLock lock(mutex_);
  line_.host_opened(now());
  woken_ = true;
  changed_.notify_all();
}

void BoardServer::read_loop() {
  const MutexLock lock(mutex_);
  while (!stopping_) {
    const std::uint64_t connection = connection_;
    mutex_.unlock();
    const SerialDevice::Wait outcome = device_.wait();
    mutex_.lock();
    if (outcome == SerialDevice::Wait::received) {
      if (!read_some()) return;
      continue;
    }
    lost_ = lost_ || (outcome == SerialDevice::Wait::lost && connection == connection_);
    changed_.notify_all();
    changed_.wait(mutex_, [&]() REQUIRES(mutex_) { return stopping_ || connection != connection_; });
  }
}

/// Takes what the line has room for; false when the server stops.
bool BoardServer::read_some() {
  changed_.wait(mutex_, [this]() REQUIRES(mutex_) { return stopping_ || line_.room() > 0; });
  if (stopping_) return false;
  std::array<std::uint8_t, 512> buffer;
  const std::size_t room = std::min(buffer.size(), line_.room());
  mutex_.unlock();
  const std::size_t count = device_.read(std::span(buffer).first(room));
  mutex_.lock();
  line_.put(std::span(buffer).first(count), now());
  woken_ = true;
  changed_.notify_all();
  return true;
}

void BoardServer::work_loop() {
  const MutexLock lock(mutex_);
  while (!stopping_) {
    woken_ = false;
    const std::vector<std::uint8_t> output = line_.take(now());
    changed_.notify_all();
    const bool hangup = line_.take_hangup();
    if (!output.empty()) {
      const MutexUnlock unlocked(mutex_);
      device_.write(output);
    }
    if (hangup || lost_) {
      replug();
    } else if (output.empty()) {
      rest();
    }
  }
}

void BoardServer::rest() {
  const auto due = [this]() REQUIRES(mutex_) { return stopping_ || lost_ || woken_; };
  if (const auto next = line_.next(now())) {
    changed_.wait_until(mutex_, *next, due);
  } else {
    changed_.wait(mutex_, due);
  }
}

/// Takes the board off the line and brings it back after a while, powered on anew.
void BoardServer::replug() {
  mutex_.unlock();
  device_.close();
  mutex_.lock();
  auto away = kUnplugged;
  while (pause(away)) {
    mutex_.unlock();
    const bool opened = open().ok();
    mutex_.lock();
    if (opened) break;
    away = kReopenEvery;
  }
  lost_ = false;
  ++connection_;
  line_.plug_in();
  line_.host_opened(now());
  changed_.notify_all();
}

/// False when the server stops meanwhile.
bool BoardServer::pause(std::chrono::milliseconds time) {
  return !changed_.wait_for(mutex_, time, [this]() REQUIRES(mutex_) { return stopping_; });
}

}  // namespace qv5123
