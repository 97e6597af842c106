#include "base/interrupts.h"

#include <windows.h>

#include <atomic>
#include <thread>
#include <utility>

namespace qv5123 {
namespace {

/// The console calls its handler with nothing of ours, so that what it signals lives as long as the process.
HANDLE request_event() {
  static const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  return event;
}

BOOL WINAPI on_console_event(DWORD event) {
  constexpr DWORD kLongerThanTheSystemWaits = 30'000;
  SetEvent(request_event());
  // The system ends the process as soon as this returns, or after some seconds.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kLongerThanTheSystemWaits);
  return TRUE;
}

}  // namespace

class Interrupts::Watch {
 public:
  explicit Watch(std::function<void()> on_interrupt)
      : on_interrupt_(std::move(on_interrupt)), thread_(&Watch::wait, this) {
    SetConsoleCtrlHandler(on_console_event, TRUE);
  }
  ~Watch() {
    SetConsoleCtrlHandler(on_console_event, FALSE);
    ending_ = true;
    SetEvent(request_event());
    thread_.join();
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  void wait() {
    while (WaitForSingleObject(request_event(), INFINITE) == WAIT_OBJECT_0 && !ending_) on_interrupt_();
  }

  std::function<void()> on_interrupt_;
  std::atomic<bool> ending_{false};
  std::thread thread_;
};

Interrupts::Interrupts(std::function<void()> on_interrupt)
    : watch_(std::make_unique<Watch>(std::move(on_interrupt))) {}
Interrupts::~Interrupts() = default;

}  // namespace qv5123
