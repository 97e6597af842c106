#include <windows.h>

#include "simulator/stop_signal.h"

namespace qv5123 {
namespace {

/// Lives as long as the process: the console calls the handler on a thread of its own.
HANDLE stop_event() {
  static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return event;
}

BOOL WINAPI on_console_event(DWORD) {
  SetEvent(stop_event());
  return TRUE;
}

}  // namespace

void hold_stop_signals() {
  stop_event();
  SetConsoleCtrlHandler(on_console_event, TRUE);
}

void wait_for_stop_signal() {
  WaitForSingleObject(stop_event(), INFINITE);
}

}  // namespace qv5123
