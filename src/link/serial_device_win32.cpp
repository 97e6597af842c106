#include <windows.h>

#include <algorithm>
#include <functional>

#include "base/handle_win32.h"
#include "base/mutex.h"
#include "base/text_win32.h"
#include "link/device_gate.h"
#include "link/line_settings.h"
#include "link/port_list.h"
#include "link/serial_device.h"
#include "link/serial_line_win32.h"

namespace qv5123 {
namespace {

constexpr DWORD kDriverQueue = 8192;  // bytes, each way
constexpr DWORD kPurgeAll = PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR;
/// Some USB drivers forget to end the wait for a character when the adapter is pulled, so it is also asked
/// for now and then.
constexpr DWORD kStillThereMilliseconds = 500;

class Win32SerialDevice final : public SerialDevice {
 public:
  ~Win32SerialDevice() override { close(); }

  OpenResult open(const std::string& name, const LineSettings& settings) override;
  void close() override;
  Wait wait() override;
  std::size_t read(std::span<std::uint8_t> buffer) override;
  std::size_t write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on = {}) override;

 private:
  bool create_events();
  bool open_handle(const std::string& name);
  bool set_up(const LineSettings& settings);
  void release();

  bool input_queue(DWORD& count);
  bool arm_wait();
  void end_wait();
  bool is_closed() const;
  Wait why_ended() const;
  DWORD unsent(DWORD wanted);
  /// What came of a read or a write.
  struct Moved {
    DWORD count = 0;
    bool over = false;  ///< not for its time-out: an error, close(), or nobody would wait for it
  };
  Moved finish(OVERLAPPED& operation, BOOL started, DWORD at_once, const std::function<bool()>& keep_on);

  Mutex lifecycle_;  ///< one open() or close() at a time
  DeviceGate gate_;
  Handle port_;
  Handle read_event_, write_event_, wait_event_;
  Handle stop_event_;  ///< signalled from close() until the next open
  OVERLAPPED read_{}, write_{};
  OVERLAPPED wait_{};  ///< of the wait for a character, which stays pending from one wait() to the next
  DWORD wait_mask_ = 0;
  bool wait_pending_ = false;
};

OpenResult Win32SerialDevice::open(const std::string& name, const LineSettings& settings) {
  const MutexLock lifecycle(lifecycle_);
  if (gate_.is_open()) return open_error(OpenError::busy, name, "this program");
  if (name.empty()) return open_error(OpenError::not_found, name);
  const std::string fault = settings_fault(settings);
  if (!fault.empty()) return open_error(OpenError::bad_settings, name, fault);
  if (create_events() && open_handle(name) && set_up(settings)) {
    gate_.open();
    return {};
  }
  const OpenResult result = system_error(GetLastError(), name);
  release();
  return result;
}

bool Win32SerialDevice::create_events() {
  constexpr BOOL kManual = TRUE, kAuto = FALSE;
  read_event_ = Handle(CreateEventW(nullptr, kAuto, FALSE, nullptr));
  write_event_ = Handle(CreateEventW(nullptr, kManual, FALSE, nullptr));
  wait_event_ = Handle(CreateEventW(nullptr, kManual, FALSE, nullptr));
  stop_event_ = Handle(CreateEventW(nullptr, kManual, FALSE, nullptr));
  read_ = write_ = wait_ = OVERLAPPED{};
  read_.hEvent = read_event_.get();
  write_.hEvent = write_event_.get();
  wait_.hEvent = wait_event_.get();
  return read_event_ && write_event_ && wait_event_ && stop_event_;
}

bool Win32SerialDevice::open_handle(const std::string& name) {
  constexpr DWORD kNotShared = 0;
  port_ = Handle(CreateFileW(to_wide(openable_name(name)).c_str(), GENERIC_READ | GENERIC_WRITE, kNotShared,
                             nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
  return static_cast<bool>(port_);
}

/// The order matters to drivers: queues and purge before the timeouts, the control block last, and the mask
/// set anew so that nothing from before the settings wakes a wait.
bool Win32SerialDevice::set_up(const LineSettings& settings) {
  const HANDLE port = port_.get();
  if (!SetCommMask(port, EV_RXCHAR)) return false;
  if (!SetupComm(port, kDriverQueue, kDriverQueue) || !PurgeComm(port, kPurgeAll)) return false;
  COMMTIMEOUTS timeouts = line_timeouts(settings.baud_rate);
  if (!SetCommTimeouts(port, &timeouts)) return false;
  DCB line{};
  line.DCBlength = sizeof line;
  if (!GetCommState(port, &line)) return false;
  set_up_line(line, settings);
  if (!SetCommState(port, &line)) return false;
  return SetCommMask(port, 0) && SetCommMask(port, EV_RXCHAR);
}

void Win32SerialDevice::close() {
  const MutexLock lifecycle(lifecycle_);
  if (!gate_.is_open()) return;
  gate_.shut();
  SetEvent(stop_event_.get());
  SetCommMask(port_.get(), 0);
  PurgeComm(port_.get(), kPurgeAll);
  gate_.await_empty();
  end_wait();
  release();
}

void Win32SerialDevice::release() {
  port_.reset();
  for (Handle* event : {&read_event_, &write_event_, &wait_event_, &stop_event_}) event->reset();
}

SerialDevice::Wait Win32SerialDevice::wait() {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return Wait::closed;
  const HANDLE events[] = {stop_event_.get(), wait_event_.get()};
  while (true) {
    // Armed before the queue is looked at, so that no character can slip in between the two.
    if (!arm_wait()) return why_ended();
    DWORD queued = 0;
    if (!input_queue(queued)) return why_ended();
    if (queued > 0) return Wait::received;
    const DWORD woken = WaitForMultipleObjects(2, events, FALSE, kStillThereMilliseconds);
    if (woken == WAIT_OBJECT_0) return Wait::closed;
    if (woken == WAIT_FAILED) return why_ended();
  }
}

bool Win32SerialDevice::is_closed() const {
  return WaitForSingleObject(stop_event_.get(), 0) == WAIT_OBJECT_0;
}

/// close() makes the calls fail that a lost device does.
SerialDevice::Wait Win32SerialDevice::why_ended() const {
  return is_closed() ? Wait::closed : Wait::lost;
}

/// Sees to it that a wait for a character is pending; false when the device has gone.
bool Win32SerialDevice::arm_wait() {
  if (wait_pending_) {
    DWORD unused = 0;
    if (!GetOverlappedResult(port_.get(), &wait_, &unused, FALSE)) {
      wait_pending_ = GetLastError() == ERROR_IO_INCOMPLETE;
      return wait_pending_;
    }
    wait_pending_ = false;
  }
  ResetEvent(wait_event_.get());
  if (WaitCommEvent(port_.get(), &wait_mask_, &wait_)) {
    // Characters were there already. With the event set the wait ends at once and is armed again.
    SetEvent(wait_event_.get());
    return true;
  }
  wait_pending_ = GetLastError() == ERROR_IO_PENDING;
  return wait_pending_;
}

/// The driver writes into the pending wait's record until the wait has ended, so it must have before the
/// record goes. The mask is cleared once more, because the watcher may have armed the wait after close() did.
void Win32SerialDevice::end_wait() {
  if (!wait_pending_) return;
  DWORD unused = 0;
  SetCommMask(port_.get(), 0);
  CancelIoEx(port_.get(), &wait_);
  GetOverlappedResult(port_.get(), &wait_, &unused, TRUE);
  wait_pending_ = false;
}

bool Win32SerialDevice::input_queue(DWORD& count) {
  DWORD errors = 0;
  COMSTAT status{};
  if (!ClearCommError(port_.get(), &errors, &status)) return false;
  count = status.cbInQue;
  return true;
}

std::size_t Win32SerialDevice::read(std::span<std::uint8_t> buffer) {
  const DeviceGate::Pass pass(gate_);
  DWORD queued = 0;
  if (!pass || !input_queue(queued) || queued == 0) return 0;
  DWORD count = 0;
  const BOOL done = ReadFile(port_.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, &read_);
  return finish(read_, done, count, {}).count;
}

/// The write timeout ends a write that goes slower than it, which is no reason to drop the rest.
std::size_t Win32SerialDevice::write(std::span<const std::uint8_t> bytes, const KeepOn& keep_on) {
  const DeviceGate::Pass pass(gate_);
  if (!pass) return 0;
  std::size_t sent = 0;
  std::size_t told = 0;
  // A driver may tell of more than it then has moved; a line that stands still must not look as if it moved.
  const auto ask = [&](std::size_t now) {
    told = std::max(told, now);
    return !keep_on || keep_on(told);
  };
  Moved moved;
  while (sent < bytes.size() && !moved.over) {
    const auto wanted = static_cast<DWORD>(bytes.size() - sent);
    const std::function<bool()> go_on = [&] { return ask(sent + wanted - unsent(wanted)); };
    DWORD count = 0;
    const BOOL done = WriteFile(port_.get(), bytes.data() + sent, wanted, &count, &write_);
    moved = finish(write_, done, count, go_on);
    sent += moved.count;
    if (!moved.over && moved.count < wanted) moved.over = !ask(sent);
  }
  return sent;
}

/// How many of the `wanted` bytes of a write the driver still has.
DWORD Win32SerialDevice::unsent(DWORD wanted) {
  DWORD errors = 0;
  COMSTAT status{};
  if (!ClearCommError(port_.get(), &errors, &status)) return wanted;
  return std::min(wanted, status.cbOutQue);
}

/// Waits for a read or write that was `started` with `at_once` bytes, and takes it back when the device is
/// closed meanwhile or `keep_on` says no. On an error the port's error state is cleared.
Win32SerialDevice::Moved Win32SerialDevice::finish(OVERLAPPED& operation, BOOL started, DWORD at_once,
                                                   const std::function<bool()>& keep_on) {
  if (started) return {at_once, is_closed()};
  Moved moved{0, true};
  if (GetLastError() == ERROR_IO_PENDING) {
    const HANDLE events[] = {stop_event_.get(), operation.hEvent};
    constexpr DWORD kDone = WAIT_OBJECT_0 + 1;
    constexpr auto kStep = static_cast<DWORD>(SerialDevice::kAskEvery.count());
    DWORD woken = WAIT_TIMEOUT;
    while (woken == WAIT_TIMEOUT) {
      woken = WaitForMultipleObjects(2, events, FALSE, kStep);
      if (woken == WAIT_TIMEOUT && keep_on && !keep_on()) break;
    }
    if (woken != kDone) CancelIoEx(port_.get(), &operation);
    const BOOL done = GetOverlappedResult(port_.get(), &operation, &moved.count, woken != kDone);
    const DWORD error = done ? ERROR_SUCCESS : GetLastError();
    // Some drivers call the end of the time an error, by the one name or the other.
    const bool timed_out = error == ERROR_TIMEOUT || error == ERROR_SEM_TIMEOUT;
    moved.over = woken != kDone || !(done || timed_out);
    if (done) return moved;
  }
  DWORD ignored = 0;
  input_queue(ignored);
  return moved;
}

}  // namespace

std::unique_ptr<SerialDevice> make_serial_device() {
  return std::make_unique<Win32SerialDevice>();
}

}  // namespace qv5123
