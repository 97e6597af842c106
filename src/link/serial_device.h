#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace qv5123 {

/// How the line is set up. The codes are the ones stored in the settings.
struct LineSettings {
  std::uint32_t baud_rate = 19200;  ///< bits per second, never 0
  std::uint8_t data_bits = 8;       ///< 5..8
  std::uint8_t stop_bits = 0;       ///< 0 one, 1 one and a half, 2 two
  std::uint8_t parity = 0;          ///< 0 none, 1 odd, 2 even, 3 mark, 4 space
  std::uint32_t flow_flags = 0;     ///< bit 0 DTR/DSR, bit 1 RTS/CTS, bit 2 XON/XOFF
  friend bool operator==(const LineSettings&, const LineSettings&) = default;
};

enum class OpenError { none, not_found, permission_denied, busy, not_a_port, bad_settings, failed };

/// What came of opening a port. `text` says it in words, with what to do about it; empty on success.
struct OpenResult {
  OpenError error = OpenError::none;
  std::string text;
  bool ok() const { return error == OpenError::none; }
};

/// The smallest interface over a serial device of the operating system, or over the simulated chip.
///
/// One thread waits and reads, one thread writes; close() may come from any thread while they do, releases
/// both and returns once neither touches the device any more. After close() the object can be opened again.
class SerialDevice {
 public:
  enum class Wait { received, closed, lost };

  virtual ~SerialDevice() = default;

  /// Opens `name` for exclusive use and sets the line up. On failure nothing stays open.
  virtual OpenResult open(const std::string& name, const LineSettings& settings) = 0;
  /// Safe on a device that is not open.
  virtual void close() = 0;

  /// Blocks until bytes can be read, close() is called, or the device has gone (unplugged, hung up).
  virtual Wait wait() = 0;
  /// Moves up to `buffer.size()` received bytes; 0 at once when there are none.
  virtual std::size_t read(std::span<std::uint8_t> buffer) = 0;
  /// Asked on the writing thread while a write waits for the line, with how many of its bytes have left. When
  /// it says false the write ends, and what has not left is dropped.
  using KeepOn = std::function<bool(std::size_t sent)>;
  /// The longest time between two such questions.
  static constexpr std::chrono::milliseconds kAskEvery{100};
  /// Sends all of `bytes`, blocking until the line has sent them. Returns how many were sent: fewer when
  /// the device was lost or closed meanwhile, or `keep_on` ended it.
  virtual std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) = 0;
};

/// The result of failing to open `name`, said in words and with what to do about it.
///
/// `detail` completes the sentence: for busy the program that holds the port, for permission_denied what to
/// do on this system, for bad_settings and failed the reason. It may be empty.
OpenResult open_error(OpenError error, const std::string& name, const std::string& detail = {});

/// A serial device of this operating system, not open yet. It takes the names that list_ports() gives.
///
/// A write waits until the line has taken it, is lost, or is closed: also on Windows, where the driver ends
/// it after the write timeout (1 ms per byte at 19200 baud, none above) and the rest is handed over anew.
std::unique_ptr<SerialDevice> make_serial_device();

}  // namespace qv5123
