#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>

#include "base/stop_requests.h"

namespace qv5123 {
namespace {

constexpr int kRequests[] = {SIGINT, SIGTERM, SIGHUP};

sigset_t requests() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kRequests) sigaddset(&set, signal);
  return set;
}

/// A request that comes while the program already ends because of another.
void end_on_late_request(int) {
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

class StopRequests::System {
 public:
  System() {
    const sigset_t set = requests();
    pthread_sigmask(SIG_BLOCK, &set, &before_);
    signals_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    wake_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::signal(SIGPIPE, SIG_IGN);
  }
  ~System() {
    ::close(signals_);
    ::close(wake_);
    // Without a handler one that waits would end the program as if it had been killed.
    if (taken_)
      for (const int signal : kRequests) std::signal(signal, end_on_late_request);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  System(const System&) = delete;
  System& operator=(const System&) = delete;

  Wait wait(std::optional<std::chrono::milliseconds> time) {
    pollfd polled[] = {{signals_, POLLIN, 0}, {wake_, POLLIN, 0}};
    while (::poll(polled, 2, time ? static_cast<int>(time->count()) : -1) < 0 && errno == EINTR) {
    }
    if (polled[1].revents != 0) return Wait::woken;
    signalfd_siginfo taken{};
    if (polled[0].revents == 0) return Wait::time_over;
    if (::read(signals_, &taken, sizeof taken) <= 0) return Wait::time_over;
    taken_ = true;
    return Wait::request;
  }
  void wake() { eventfd_write(wake_, 1); }

 private:
  sigset_t before_{};
  int signals_ = -1;
  int wake_ = -1;
  bool taken_ = false;
};

StopRequests::StopRequests() : system_(std::make_unique<System>()) {}
StopRequests::~StopRequests() = default;

StopRequests::Wait StopRequests::wait(std::optional<std::chrono::milliseconds> time) {
  return system_->wait(time);
}

void StopRequests::wake() {
  system_->wake();
}

// A pipe that can be written to takes so much; what is longer would stand still with the rest.
void write_last_words(const std::string& text, std::chrono::milliseconds patience) {
  pollfd polled{STDERR_FILENO, POLLOUT, 0};
  if (::poll(&polled, 1, static_cast<int>(patience.count())) <= 0) return;
  const std::size_t size = std::min<std::size_t>(text.size(), PIPE_BUF);
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), size);
}

void end_program_at_once(const std::string& text, int code) {
  write_last_words(text, std::chrono::milliseconds(0));
  std::_Exit(code);
}

}  // namespace qv5123
