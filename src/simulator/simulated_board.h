#pragma once

#include <functional>
#include <optional>
#include <thread>

#include "base/mutex.h"
#include "link/in_process_device.h"
#include "link/serial_device.h"
#include "simulator/board_line.h"
#include "simulator/simulated_chip.h"

namespace qv5123 {

/// A simulated board inside the process, as the serial device that it hangs on. The chip announces itself
/// whenever the device is opened.
class SimulatedBoard final : public SerialDevice {
 public:
  using Clock = std::function<TimePoint()>;

  /// How long the board stays away after a hangup fault.
  static constexpr std::chrono::milliseconds kUnplugged{1000};

  SimulatedBoard() : SimulatedBoard(LineOptions{}) {}
  /// What takes time (a line rate, delays, a transfer given up) is seen to by a thread of the board's own,
  /// which sleeps meanwhile; unless `clock` is given: whoever moves that clock calls advance().
  explicit SimulatedBoard(const LineOptions& options, Clock clock = {});
  ~SimulatedBoard() override;

  OpenResult open(const std::string& name, const LineSettings& settings) override;
  void close() override { device_.close(); }
  Wait wait() override { return device_.wait(); }
  std::size_t read(std::span<std::uint8_t> buffer) override { return device_.read(buffer); }
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override {
    return device_.write(bytes, keep_on);
  }

  /// Takes the board off the line, and puts it back with the chip powered on anew.
  void unplug();
  void plug_in();

  /// Lets the board see what time it is.
  void advance();
  /// Calls `look` with the chip, which stands still meanwhile. What it makes the chip say is sent.
  void with_chip(const std::function<void(SimulatedChip&)>& look);

 private:
  void take_from_host(std::span<const std::uint8_t> bytes);
  void pump() REQUIRES(mutex_);
  void plug_in_again() REQUIRES(mutex_);
  void work_loop();
  std::optional<TimePoint> next() const REQUIRES(mutex_);

  const bool own_clock_;  ///< time passes by itself
  const Clock clock_;
  InProcessDevice device_;

  Mutex mutex_;
  Condition changed_;
  SimulatedChip chip_ GUARDED_BY(mutex_);
  BoardLine line_ GUARDED_BY(mutex_);
  std::optional<TimePoint> back_at_ GUARDED_BY(mutex_);  ///< when the board returns from a hangup
  bool stopping_ GUARDED_BY(mutex_) = false;
  std::thread worker_;
};

}  // namespace qv5123
