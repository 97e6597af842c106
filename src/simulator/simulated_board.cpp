#include "simulator/simulated_board.h"

#include <utility>

namespace qv5123 {

SimulatedBoard::SimulatedBoard(const LineOptions& options, Clock clock)
    : own_clock_(!clock),
      clock_(clock ? std::move(clock) : Clock(&std::chrono::steady_clock::now)),
      device_([this](std::span<const std::uint8_t> bytes) { take_from_host(bytes); }),
      line_(chip_, options) {
  line_.plug_in();
  if (own_clock_) worker_ = std::thread(&SimulatedBoard::work_loop, this);
}

SimulatedBoard::~SimulatedBoard() {
  device_.close();
  {
    const MutexLock lock(mutex_);
    stopping_ = true;
    changed_.notify_all();
  }
  if (worker_.joinable()) worker_.join();
}

OpenResult SimulatedBoard::open(const std::string& name, const LineSettings& settings) {
  OpenResult result = device_.open(name, settings);
  if (result.ok()) with_chip([](SimulatedChip& chip) { chip.announce(); });
  return result;
}

void SimulatedBoard::unplug() {
  const MutexLock lock(mutex_);
  device_.hang_up();
}

void SimulatedBoard::plug_in() {
  const MutexLock lock(mutex_);
  plug_in_again();
}

void SimulatedBoard::advance() {
  const MutexLock lock(mutex_);
  pump();
}

void SimulatedBoard::with_chip(const std::function<void(SimulatedChip&)>& look) {
  const MutexLock lock(mutex_);
  look(chip_);
  pump();
}

void SimulatedBoard::take_from_host(std::span<const std::uint8_t> bytes) {
  const MutexLock lock(mutex_);
  line_.put(bytes, clock_());
  pump();
}

/// Moves everything along to the present.
void SimulatedBoard::pump() {
  const TimePoint now = clock_();
  if (back_at_ && now >= *back_at_) plug_in_again();
  device_.deliver(line_.take(now));
  if (line_.take_hangup()) {
    device_.hang_up();
    back_at_ = now + kUnplugged;
  }
  changed_.notify_all();
}

void SimulatedBoard::plug_in_again() {
  back_at_.reset();
  line_.plug_in();
  device_.plug_in();
}

std::optional<TimePoint> SimulatedBoard::next() const {
  const auto next = line_.next(clock_());
  return back_at_ && (!next || *back_at_ < *next) ? back_at_ : next;
}

void SimulatedBoard::work_loop() {
  const MutexLock lock(mutex_);
  while (!stopping_) {
    if (const auto time = next()) {
      changed_.wait_until(mutex_, *time);
    } else {
      changed_.wait(mutex_);
    }
    if (stopping_) return;
    const auto time = next();
    if (time && *time <= clock_()) pump();
  }
}

}  // namespace qv5123
