#pragma once

namespace qv5123 {

/// Holds back the system's requests to end the program, so that wait_for_stop_signal() gets them. To be
/// called before any thread is started.
void hold_stop_signals();

/// Blocks until the system asks the program to end (SIGTERM, SIGINT, or the console's Ctrl-C).
void wait_for_stop_signal();

}  // namespace qv5123
