#include <csignal>

#include "simulator/stop_signal.h"

namespace qv5123 {
namespace {

sigset_t stop_signals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGHUP);
  return set;
}

}  // namespace

void hold_stop_signals() {
  const sigset_t set = stop_signals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  // Whoever reads the trace may go away; the chip goes on.
  std::signal(SIGPIPE, SIG_IGN);
}

void wait_for_stop_signal() {
  const sigset_t set = stop_signals();
  int signal = 0;
  sigwait(&set, &signal);
}

}  // namespace qv5123
