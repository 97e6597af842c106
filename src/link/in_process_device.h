#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <string>

#include "base/mutex.h"
#include "link/device_gate.h"
#include "link/serial_device.h"

namespace qv5123 {

/// One end of a line inside the process. The other end is the peer: a function that is called with the bytes
/// written, and whoever calls deliver() to send bytes back.
class InProcessDevice final : public SerialDevice {
 public:
  /// Called on the writing thread, one call at a time, in the order of the bytes. It may call deliver(), but
  /// not close(), which waits for it to return.
  using Peer = std::function<void(std::span<const std::uint8_t>)>;
  /// How long the line takes for that many bytes at these settings. The write waits that long before the
  /// peer gets them; close() and hang_up() cut the wait short.
  using Pace = std::function<std::chrono::nanoseconds(std::size_t bytes, const LineSettings& settings)>;

  /// Without `pace` the line takes no time. line_time() is the pace of a real one.
  explicit InProcessDevice(Peer peer, Pace pace = {});
  ~InProcessDevice() override;

  /// Takes any name: the line has none of its own.
  OpenResult open(const std::string& name, const LineSettings& settings) override;
  void close() override;
  Wait wait() override;
  std::size_t read(std::span<std::uint8_t> buffer) override;
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override;

  /// Sends bytes to the device's end, from any thread. A line that is not open or is unplugged loses them.
  void deliver(std::span<const std::uint8_t> bytes);
  /// Pulls the cable: what is open is lost, what was received before can still be read, and open() finds
  /// nothing until plug_in().
  void hang_up();
  void plug_in();
  /// What the line was last set to.
  LineSettings settings() const;

 private:
  bool up() const REQUIRES(mutex_) { return open_ && !lost_; }
  bool wait_until(std::chrono::steady_clock::time_point due, const std::function<bool()>& keep_on);
  std::chrono::nanoseconds time_for(std::size_t bytes) const;

  const Peer peer_;
  const Pace pace_;
  DeviceGate gate_;
  Mutex lifecycle_;  ///< one open() or close() at a time

  mutable Mutex mutex_;
  Condition changed_;
  bool plugged_ GUARDED_BY(mutex_) = true;
  bool open_ GUARDED_BY(mutex_) = false;
  bool lost_ GUARDED_BY(mutex_) = false;
  LineSettings settings_ GUARDED_BY(mutex_);
  std::deque<std::uint8_t> received_ GUARDED_BY(mutex_);
};

}  // namespace qv5123
