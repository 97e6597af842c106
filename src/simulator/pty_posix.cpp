#include "simulator/pty.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/mutex.h"
#include "link/device_gate.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

/// A terminal says nothing when it is opened, so it is looked at this often while nobody has it open.
constexpr int kLookEveryMs = 20;
/// A host that does not read for that long loses what the chip says, as with any UART.
constexpr int kWriteTimeoutMs = 500;

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { reset(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  void reset(int fd = -1) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = fd;
  }

 private:
  int fd_ = -1;
};

OpenResult failure(const std::string& what) {
  return {OpenError::failed, what + ": " + std::generic_category().message(errno)};
}

/// Bytes pass as they are, in both directions. Opening and closing the far end once also makes the near end
/// report that nobody is there.
bool make_raw(const char* path) {
  const Descriptor far_end(::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios mode;
  if (!far_end || ::tcgetattr(far_end.get(), &mode) != 0) return false;
  ::cfmakeraw(&mode);
  ::cfsetspeed(&mode, B19200);
  return ::tcsetattr(far_end.get(), TCSANOW, &mode) == 0;
}

/// Makes a link to `target` beside `link`, under a name that is free.
std::error_code make_link_beside(const fs::path& link, const std::string& target, fs::path& fresh) {
  constexpr int kNames = 100;
  std::error_code error;
  for (int name = 0; name < kNames; ++name) {
    fresh = link.string() + ".qv5123-" + std::to_string(::getpid()) + "-" + std::to_string(name) + ".tmp";
    fs::create_symlink(target, fresh, error);
    if (error != std::errc::file_exists) break;
  }
  return error;
}

/// Why nothing may be put in the place of `link`; empty if it may. A link to another pseudo-terminal was left
/// by a run that was killed.
std::string refusal_to_replace(const fs::path& link, const std::string& target) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(link, error);
  if (!fs::exists(status)) return {};
  if (!fs::is_symlink(status)) return "--link " + link.string() + " exists and is not a link";
  const fs::path leads_to = fs::read_symlink(link, error);
  if (leads_to.parent_path() == fs::path(target).parent_path()) return {};
  return "--link " + link.string() + " exists and leads to " + leads_to.string();
}

/// Puts the link in place in one step.
std::string place_link(const fs::path& link, const std::string& target) {
  std::error_code error;
  const std::string refusal = refusal_to_replace(link, target);
  if (!refusal.empty()) return refusal;
  fs::path fresh;
  error = make_link_beside(link, target, fresh);
  if (error) return "--link " + link.string() + ": " + error.message();
  fs::rename(fresh, link, error);
  if (!error) return {};
  const std::string reason = error.message();
  fs::remove(fresh, error);
  return "--link " + link.string() + ": " + reason;
}

/// Removes the link if it still leads to `target`.
void remove_link(const fs::path& link, const std::string& target) {
  std::error_code error;
  if (fs::read_symlink(link, error) == target) fs::remove(link, error);
}

class PosixPseudoTerminal final : public PseudoTerminal {
 public:
  explicit PosixPseudoTerminal(PseudoTerminalOptions options) : options_(std::move(options)) {}
  ~PosixPseudoTerminal() override { close(); }

  OpenResult open(const std::string&, const LineSettings&) override;
  void close() override;
  Wait wait() override;
  std::size_t read(std::span<std::uint8_t> buffer) override;
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override;
  std::string path() const override { return path_; }

 private:
  OpenResult make();
  short look(short events, int timeout_ms);
  bool stopped_for(int timeout_ms) { return look(0, timeout_ms) < 0; }
  void host_is_there();

  const PseudoTerminalOptions options_;
  Mutex lifecycle_;  ///< one open() or close() at a time
  DeviceGate gate_;
  Descriptor near_end_;
  Descriptor stop_read_;
  Descriptor stop_write_;
  std::string path_;
  std::atomic<bool> host_there_ = false;
};

OpenResult PosixPseudoTerminal::open(const std::string&, const LineSettings&) {
  const MutexLock lifecycle(lifecycle_);
  if (gate_.is_open()) return {OpenError::busy, "the pseudo-terminal is open already"};
  OpenResult result = make();
  if (result.ok() && !options_.link.empty()) {
    const std::string fault = place_link(options_.link, path_);
    if (!fault.empty()) result = {OpenError::failed, fault};
  }
  if (result.ok()) {
    gate_.open();
  } else {
    near_end_.reset();
  }
  return result;
}

OpenResult PosixPseudoTerminal::make() {
  int stop[2];
  if (::pipe2(stop, O_CLOEXEC | O_NONBLOCK) != 0) return failure("pipe");
  stop_read_.reset(stop[0]);
  stop_write_.reset(stop[1]);
  near_end_.reset(::posix_openpt(O_RDWR | O_NOCTTY));
  if (!near_end_) return failure("no pseudo-terminal");
  ::fcntl(near_end_.get(), F_SETFD, FD_CLOEXEC);
  ::fcntl(near_end_.get(), F_SETFL, O_NONBLOCK);
  char path[128];
  if (::grantpt(near_end_.get()) != 0 || ::unlockpt(near_end_.get()) != 0 ||
      ::ptsname_r(near_end_.get(), path, sizeof path) != 0 || !make_raw(path)) {
    return failure("no pseudo-terminal");
  }
  path_ = path;
  host_there_ = false;
  return {};
}

void PosixPseudoTerminal::close() {
  const MutexLock lifecycle(lifecycle_);
  if (!gate_.is_open()) return;
  gate_.shut();
  // The byte stays in the pipe, so that everybody who waits sees it.
  [[maybe_unused]] const auto written = ::write(stop_write_.get(), "x", 1);
  gate_.await_empty();
  if (!options_.link.empty()) remove_link(options_.link, path_);
  near_end_.reset();
}

/// What poll reports about the near end after at most `timeout_ms`; -1 once the terminal is being closed.
short PosixPseudoTerminal::look(short events, int timeout_ms) {
  pollfd fds[] = {{stop_read_.get(), POLLIN, 0}, {events == 0 ? -1 : near_end_.get(), events, 0}};
  while (::poll(fds, 2, timeout_ms) < 0 && errno == EINTR) {
  }
  return fds[0].revents != 0 ? -1 : fds[1].revents;
}

SerialDevice::Wait PosixPseudoTerminal::wait() {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return Wait::closed;
  for (;;) {
    const short seen = look(POLLIN, host_there_ ? -1 : 0);
    if (seen < 0) return Wait::closed;
    const bool nobody = (seen & POLLHUP) != 0;
    if (!nobody || (seen & POLLIN) != 0) host_is_there();
    if ((seen & POLLIN) != 0) return Wait::received;
    if (!nobody) continue;
    host_there_ = false;
    if (stopped_for(kLookEveryMs)) return Wait::closed;
  }
}

void PosixPseudoTerminal::host_is_there() {
  if (!host_there_.exchange(true) && options_.on_host_opened) options_.on_host_opened();
}

std::size_t PosixPseudoTerminal::read(std::span<std::uint8_t> buffer) {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return 0;
  const ssize_t count = ::read(near_end_.get(), buffer.data(), buffer.size());
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t PosixPseudoTerminal::write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on) {
  const DeviceGate::Pass pass(gate_);
  std::size_t done = 0;
  while (pass && done < bytes.size() && host_there_) {
    const ssize_t count = ::write(near_end_.get(), bytes.data() + done, bytes.size() - done);
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (errno == EINTR) {
      continue;
    } else if (errno != EAGAIN || look(POLLOUT, kWriteTimeoutMs) != POLLOUT || (keep_on && !keep_on(done))) {
      break;
    }
  }
  return done;
}

}  // namespace

std::unique_ptr<PseudoTerminal> make_pseudo_terminal(PseudoTerminalOptions options) {
  return std::make_unique<PosixPseudoTerminal>(std::move(options));
}

}  // namespace qv5123
