#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <thread>

#include "base/mutex.h"
#include "link/command_buffer.h"
#include "link/ring_queue.h"
#include "link/sender.h"
#include "link/serial_device.h"

namespace qv5123 {

/// What the watcher thread tells, on that thread. Any of them may be empty.
struct CommPortEvents {
  std::function<void()> received;                   ///< the receive queue holds new bytes
  std::function<void()> lost;                       ///< the device has gone; the port should be closed
  std::function<void(const std::string&)> trouble;  ///< a text for the user
};

/// The serial port: opens and configures a device, moves what arrives into the receive queue on a watcher
/// thread, and offers the paced write.
class CCommPort {
 public:
  static constexpr std::size_t kReadSize = 2048;
  static constexpr std::size_t kRawCaptureSize = 4096;

  /// In queue mode received bytes go to the receive queue. Raw capture fills a buffer of 4096 bytes and
  /// notifies nobody; nothing switches to it today.
  enum class ReceiveMode { queue, raw_capture };

  /// How long the watcher leaves bytes in the driver's own queue of 8192 while the receive queue has no room
  /// for a whole read, before it takes them all the same and they are lost.
  struct Options {
    ReceiveMode mode = ReceiveMode::queue;
    std::chrono::milliseconds room_wait{200};
  };

  CCommPort(std::unique_ptr<SerialDevice> device, CommandBuffer& command_buffer, CommPortEvents events,
            Options options);
  CCommPort(std::unique_ptr<SerialDevice> device, CommandBuffer& command_buffer, CommPortEvents events);
  ~CCommPort();
  CCommPort(const CCommPort&) = delete;
  CCommPort& operator=(const CCommPort&) = delete;

  /// Opens the port and starts the watcher. What the receive queue holds survives a reconnect.
  OpenResult open(const std::string& name, const LineSettings& settings);
  /// Safe on a port that is not open. Must not be called from the watcher's events.
  void close();
  bool connected() const { return connected_; }
  /// Counts the calls of close(). What spans several writes compares it: behind a close stands another chip,
  /// or one that has forgotten what it was told.
  unsigned times_closed() const { return times_closed_; }
  const std::string& name() const { return name_; }

  /// What follows a write. Either may be empty.
  struct Follower {
    std::function<void()> before_bytes;  ///< the delay is over and the bytes are about to leave
    SerialDevice::KeepOn keep_on;
  };
  /// Pays the pacing delay, sends `bytes`, resets the fill index of the command buffer and returns how many
  /// bytes were sent. An empty write only pays the delay. One thread at a time.
  std::size_t write(std::span<const std::uint8_t> bytes, Pacing pacing, const Follower& follower);
  std::size_t write(std::span<const std::uint8_t> bytes, Pacing pacing = Pacing::normal) {
    return write(bytes, pacing, Follower());
  }
  /// Waits, or less when the port is closed meanwhile.
  void pause(std::chrono::milliseconds time);

  RingQueue& receive_queue() { return queue_; }
  /// Bytes that were ever put into the receive queue.
  std::uint64_t received() const { return received_; }
  std::span<const std::uint8_t> raw_capture() const { return {raw_.data(), raw_.size()}; }

 private:
  void watch();
  void receive_all();
  void queue_bytes(std::span<const std::uint8_t> bytes);
  void wait_for_room();

  std::unique_ptr<SerialDevice> device_;
  CommandBuffer& command_buffer_;
  CommPortEvents events_;
  Options options_;
  std::string name_;
  std::atomic<bool> connected_{false};
  std::atomic<unsigned> times_closed_{0};
  std::atomic<std::uint64_t> received_{0};
  RingQueue queue_;
  std::vector<std::uint8_t> raw_;
  std::thread watcher_;
  Mutex pause_mutex_;
  Condition closing_;
};

}  // namespace qv5123
