#include "base/interrupts.h"

#include <atomic>
#include <csignal>
#include <thread>
#include <utility>

namespace qv5123 {
namespace {

sigset_t requests() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&set, signal);
  return set;
}

}  // namespace

class Interrupts::Watch {
 public:
  explicit Watch(std::function<void()> on_interrupt) : on_interrupt_(std::move(on_interrupt)) {
    const sigset_t set = requests();
    pthread_sigmask(SIG_BLOCK, &set, &before_);
    thread_ = std::thread(&Watch::wait, this);
  }
  ~Watch() {
    ending_ = true;
    // It is blocked in all threads, and only wakes the one that waits for it.
    // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread)
    pthread_kill(thread_.native_handle(), SIGTERM);
    thread_.join();
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  void wait() {
    const sigset_t set = requests();
    int signal = 0;
    while (sigwait(&set, &signal) == 0 && !ending_) on_interrupt_();
  }

  std::function<void()> on_interrupt_;
  std::atomic<bool> ending_{false};
  sigset_t before_{};
  std::thread thread_;
};

Interrupts::Interrupts(std::function<void()> on_interrupt)
    : watch_(std::make_unique<Watch>(std::move(on_interrupt))) {}
Interrupts::~Interrupts() = default;

}  // namespace qv5123
