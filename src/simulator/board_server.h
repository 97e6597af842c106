#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <thread>

#include "base/mutex.h"
#include "link/serial_device.h"
#include "simulator/board_line.h"

namespace qv5123 {

/// Puts a simulated board on a serial device: what comes in goes to the chip, what the chip says goes out.
/// It rests while nothing happens. A device that is lost, or that a hangup fault breaks, is opened again.
class BoardServer {
 public:
  /// How long the board stays away after a hangup.
  static constexpr std::chrono::milliseconds kUnplugged{1000};

  BoardServer(SerialDevice& device, SimulatedChip& chip, const LineOptions& options);
  ~BoardServer() { stop(); }
  BoardServer(const BoardServer&) = delete;
  BoardServer& operator=(const BoardServer&) = delete;

  /// Called each time the device has been opened, from whatever thread did it. To be set before start().
  void on_open(std::function<void()> callback) { on_open_ = std::move(callback); }

  /// Opens the device, powers the chip on and serves until stop().
  OpenResult start(const std::string& name, const LineSettings& settings);
  void stop();
  /// A host has opened its end; from any thread.
  void host_opened();

 private:
  OpenResult open();
  void read_loop();
  bool read_some() REQUIRES(mutex_);
  void work_loop();
  void replug() REQUIRES(mutex_);
  bool pause(std::chrono::milliseconds time) REQUIRES(mutex_);
  void rest() REQUIRES(mutex_);

  SerialDevice& device_;
  std::function<void()> on_open_;
  std::string name_;
  LineSettings settings_;

  Mutex mutex_;  ///< guards the chip, too
  Condition changed_;
  BoardLine line_ GUARDED_BY(mutex_);
  bool stopping_ GUARDED_BY(mutex_) = false;
  bool lost_ GUARDED_BY(mutex_) = false;
  bool woken_ GUARDED_BY(mutex_) = false;            ///< something came in since the worker last looked
  std::uint64_t connection_ GUARDED_BY(mutex_) = 0;  ///< counts the opens
  std::thread reader_;
  std::thread worker_;
};

}  // namespace qv5123
