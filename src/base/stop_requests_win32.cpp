#include <windows.h>

#include <cstdio>

#include "base/handle_win32.h"
#include "base/stop_requests.h"

namespace qv5123 {
namespace {

/// The console calls its handler with nothing of ours, so that what it signals lives as long as the process.
/// It counts the requests.
HANDLE request_count() {
  constexpr LONG kMost = 1000;
  static const HANDLE count = CreateSemaphoreW(nullptr, 0, kMost, nullptr);
  return count;
}

BOOL WINAPI on_console_event(DWORD event) {
  constexpr DWORD kLongerThanTheSystemWaits = 30'000;
  ReleaseSemaphore(request_count(), 1, nullptr);
  // The system ends the process as soon as this returns, or after some seconds.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kLongerThanTheSystemWaits);
  return TRUE;
}

}  // namespace

class StopRequests::System {
 public:
  System() {
    request_count();
    SetConsoleCtrlHandler(on_console_event, TRUE);
  }
  ~System() { SetConsoleCtrlHandler(on_console_event, FALSE); }
  System(const System&) = delete;
  System& operator=(const System&) = delete;

  Wait wait(std::optional<std::chrono::milliseconds> time) {
    const HANDLE events[] = {wake_.get(), request_count()};
    const DWORD longest = time ? static_cast<DWORD>(time->count()) : INFINITE;
    const DWORD woken = WaitForMultipleObjects(2, events, FALSE, longest);
    if (woken == WAIT_OBJECT_0) return Wait::woken;
    return woken == WAIT_TIMEOUT ? Wait::time_over : Wait::request;
  }
  void wake() { SetEvent(wake_.get()); }

 private:
  Handle wake_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

StopRequests::StopRequests() : system_(std::make_unique<System>()) {}
StopRequests::~StopRequests() = default;

StopRequests::Wait StopRequests::wait(std::optional<std::chrono::milliseconds> time) {
  return system_->wait(time);
}

void StopRequests::wake() {
  system_->wake();
}

// Pipes of this system cannot be asked whether they take anything.
void write_last_words(const std::string& text, std::chrono::milliseconds) {
  std::fputs(text.c_str(), stderr);
}

// A console takes what is written to it; where stderr is a pipe that is full, its reader stands still.
void end_program_at_once(const std::string& text, int code) {
  const HANDLE out = GetStdHandle(STD_ERROR_HANDLE);
  DWORD written = 0;
  if (GetFileType(out) == FILE_TYPE_CHAR)
    WriteFile(out, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
  ExitProcess(static_cast<UINT>(code));
}

}  // namespace qv5123
