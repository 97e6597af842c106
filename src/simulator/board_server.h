#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

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
  using Lock = std::unique_lock<std::mutex>;

  OpenResult open();
  void read_loop();
  bool read_some(Lock& lock);
  void work_loop();
  void replug(Lock& lock);
  bool pause(Lock& lock, std::chrono::milliseconds time);
  void rest(Lock& lock);

  SerialDevice& device_;
  SimulatedChip& chip_;
  std::function<void()> on_open_;
  std::string name_;
  LineSettings settings_;

  std::mutex mutex_;  ///< guards the chip, the line and what follows
  std::condition_variable changed_;
  BoardLine line_;
  bool stopping_ = false;
  bool lost_ = false;
  bool woken_ = false;            ///< something came in since the worker last looked
  std::uint64_t connection_ = 0;  ///< counts the opens
  std::thread reader_;
  std::thread worker_;
};

}  // namespace qv5123
