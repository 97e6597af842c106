#include <asm/termbits.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>

#include "base/mutex.h"
#include "link/device_gate.h"
#include "link/line_settings.h"
#include "link/open_port_posix.h"
#include "link/serial_device.h"
#include "link/serial_line_posix.h"

namespace qv5123 {
namespace {

using std::chrono::nanoseconds;

class PosixSerialDevice final : public SerialDevice {
 public:
  ~PosixSerialDevice() override { close(); }

  OpenResult open(const std::string& name, const LineSettings& settings) override;
  void close() override;
  Wait wait() override;
  std::size_t read(std::span<std::uint8_t> buffer) override;
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override;

 private:
  OpenResult set_up(const std::string& name);
  void release();

  /// A write under way.
  struct Write {
    std::span<const std::uint8_t> bytes;
    const KeepOn& keep_on;
    std::size_t handed = 0;  ///< to the driver
  };
  bool pause(short events, nanoseconds time);
  bool go_on(const Write& write);
  bool peer_takes(const Write& write);
  void hand_to_driver(Write& write);
  bool drain(const Write& write);
  std::optional<std::size_t> unsent(const Write& write) const;
  bool transmitter_empty() const;

  Mutex lifecycle_;  ///< one open() or close() at a time
  DeviceGate gate_;
  int fd_ = -1;
  int stop_ = -1;  ///< an event that stays signalled from close() on and releases every poll
  LineSettings settings_;
};

OpenResult PosixSerialDevice::open(const std::string& name, const LineSettings& settings) {
  const MutexLock lifecycle(lifecycle_);
  if (gate_.is_open()) return open_error(OpenError::busy, name, "this program");
  if (name.empty()) return open_error(OpenError::not_found, name);
  const std::string fault = settings_fault(settings);
  if (!fault.empty()) return open_error(OpenError::bad_settings, name, fault);
  const OpenedPort port = open_port(name);
  if (!port.result.ok()) return port.result;
  fd_ = port.fd;
  settings_ = settings;
  const OpenResult result = set_up(name);
  if (result.ok())
    gate_.open();
  else
    release();
  return result;
}

OpenResult PosixSerialDevice::set_up(const std::string& name) {
  stop_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (stop_ < 0) return system_error(errno, name);
  termios2 wanted{};
  if (ioctl(fd_, TCGETS2, &wanted) != 0) return system_error(errno, name);
  set_up_line(wanted, settings_);
  if (ioctl(fd_, TCSETS2, &wanted) != 0) return system_error(errno, name);
  termios2 got{};
  if (ioctl(fd_, TCGETS2, &got) != 0) return system_error(errno, name);
  // A pseudo-terminal has no modem lines, no frame, and refuses parity; nothing depends on them there.
  int lines = TIOCM_DTR | TIOCM_RTS;
  const bool has_modem_lines = ioctl(fd_, TIOCMBIS, &lines) == 0;
  const std::string refused = has_modem_lines ? refused_settings(wanted, got) : std::string();
  if (!refused.empty()) return open_error(OpenError::bad_settings, name, refused);
  ioctl(fd_, TCFLSH, TCIFLUSH);
  discard_unsent(fd_);
  return {};
}

void PosixSerialDevice::close() {
  const MutexLock lifecycle(lifecycle_);
  if (!gate_.is_open()) return;
  gate_.shut();
  eventfd_write(stop_, 1);
  gate_.await_empty();
  release();
}

void PosixSerialDevice::release() {
  close_port(fd_);
  if (stop_ >= 0) ::close(stop_);
  fd_ = stop_ = -1;
}

SerialDevice::Wait PosixSerialDevice::wait() {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return Wait::closed;
  while (true) {
    int queued = 0;
    if (ioctl(fd_, FIONREAD, &queued) != 0) return Wait::lost;
    if (queued > 0) return Wait::received;
    pollfd polled[] = {{fd_, POLLIN, 0}, {stop_, POLLIN, 0}};
    if (ppoll(polled, 2, nullptr, nullptr) < 0) {
      if (errno == EINTR) continue;
      return Wait::lost;
    }
    if (polled[1].revents != 0) return Wait::closed;
    // The kernel has dropped what came before the line went and was not read.
    if ((polled[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) return Wait::lost;
  }
}

std::size_t PosixSerialDevice::read(std::span<std::uint8_t> buffer) {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return 0;
  const ssize_t count = ::read(fd_, buffer.data(), buffer.size());
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t PosixSerialDevice::write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on) {
  const DeviceGate::Pass pass(gate_);
  if (!pass || bytes.empty()) return 0;
  Write write{bytes, keep_on};
  hand_to_driver(write);
  if (drain(write)) return write.handed;
  const std::size_t left_over = unsent(write).value_or(write.handed);
  discard_unsent(fd_);
  return write.handed - left_over;
}

/// Waits for `events`, or for `time` to pass. False when the device was closed or lost meanwhile.
bool PosixSerialDevice::pause(short events, nanoseconds time) {
  pollfd polled[] = {{fd_, events, 0}, {stop_, POLLIN, 0}};
  const timespec timeout{time.count() / 1'000'000'000, time.count() % 1'000'000'000};
  if (ppoll(polled, 2, &timeout, nullptr) < 0) return errno == EINTR;
  return polled[1].revents == 0 && (polled[0].revents & (POLLHUP | POLLERR | POLLNVAL)) == 0;
}

bool PosixSerialDevice::go_on(const Write& write) {
  return !write.keep_on || write.keep_on(write.handed - unsent(write).value_or(0));
}

/// Waits until the other end is ready, where the settings make it say so on DSR: the kernel's own flow
/// control knows RTS/CTS only. False when the write ends meanwhile.
bool PosixSerialDevice::peer_takes(const Write& write) {
  if ((settings_.flow_flags & kFlowDtrDsr) == 0) return pause(0, nanoseconds(0));
  constexpr nanoseconds kLookAgain = std::chrono::milliseconds(2);
  while (true) {
    int lines = 0;
    const bool ready = ioctl(fd_, TIOCMGET, &lines) != 0 || (lines & TIOCM_DSR) != 0;
    if (!pause(0, ready ? nanoseconds(0) : kLookAgain)) return false;
    if (ready) return true;
    if (!go_on(write)) return false;
  }
}

void PosixSerialDevice::hand_to_driver(Write& write) {
  // What is in the driver goes out whatever DSR says, so no more than a UART's own queue is put there at
  // once.
  constexpr std::size_t kUartQueue = 16;
  const bool in_pieces = (settings_.flow_flags & kFlowDtrDsr) != 0;
  while (write.handed < write.bytes.size() && peer_takes(write)) {
    const auto rest = write.bytes.subspan(write.handed);
    const ssize_t count =
        ::write(fd_, rest.data(), in_pieces ? std::min(kUartQueue, rest.size()) : rest.size());
    if (count < 0 && errno != EAGAIN && errno != EINTR) break;
    if (count > 0) write.handed += static_cast<std::size_t>(count);
    if (count <= 0 && (!pause(POLLOUT, kAskEvery) || !go_on(write))) break;
    if (in_pieces && !drain(write)) break;
  }
}

/// Waits until the driver has sent everything that it was handed. tcdrain() would do, but nothing releases it
/// on a line that stands still. False when the write ends before.
bool PosixSerialDevice::drain(const Write& write) {
  constexpr nanoseconds kShortest = std::chrono::microseconds(200);
  constexpr nanoseconds kLongest = std::chrono::milliseconds(20);
  while (true) {
    const std::optional<std::size_t> left = unsent(write);
    if (!left) return false;
    if (*left == 0 && transmitter_empty()) return true;
    if (!pause(0, std::clamp(line_time(*left, settings_), kShortest, kLongest)) || !go_on(write))
      return false;
  }
}

/// How many of the handed bytes the driver still has; nothing where it is gone.
std::optional<std::size_t> PosixSerialDevice::unsent(const Write& write) const {
  int queued = 0;
  if (ioctl(fd_, TIOCOUTQ, &queued) != 0) return std::nullopt;
  return std::min(write.handed, static_cast<std::size_t>(std::max(queued, 0)));
}

/// Whether the UART has shifted its own queue out too. Drivers that cannot tell count as empty.
bool PosixSerialDevice::transmitter_empty() const {
  int status = 0;
  return ioctl(fd_, TIOCSERGETLSR, &status) != 0 || (status & TIOCSER_TEMT) != 0;
}

}  // namespace

std::unique_ptr<SerialDevice> make_serial_device() {
  return std::make_unique<PosixSerialDevice>();
}

}  // namespace qv5123
