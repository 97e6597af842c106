#include "cli/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <thread>

#include "cli/line_splitter.h"

namespace qv5123 {

bool stderr_is_terminal() {
  return isatty(STDERR_FILENO) == 1;
}

bool stdout_reader_gone() {
  pollfd polled{STDOUT_FILENO, 0, 0};
  return ::poll(&polled, 1, 0) > 0 && (polled.revents & (POLLERR | POLLHUP)) != 0;
}

void prepare_standard_streams() {
  std::signal(SIGPIPE, SIG_IGN);
  // Not for writing, so that output fails as it would have. Each gets the lowest number that is free.
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    const bool missing = ::fcntl(fd, F_GETFD) < 0;
    if (missing && ::open("/dev/null", O_RDONLY) < 0) return;
  }
}

class LineInput::Reader {
 public:
  explicit Reader(std::function<void(std::string)> on_line)
      : lines_(std::move(on_line)), stop_(eventfd(0, EFD_CLOEXEC)), thread_(&Reader::read_all, this) {}
  ~Reader() {
    eventfd_write(stop_, 1);
    thread_.join();
    ::close(stop_);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

 private:
  void read_all() {
    char buffer[4096];
    while (wait()) {
      const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return lines_.end();
      lines_.add({buffer, static_cast<std::size_t>(count)});
    }
  }
  bool wait() {
    pollfd polled[] = {{STDIN_FILENO, POLLIN, 0}, {stop_, POLLIN, 0}};
    while (::poll(polled, 2, -1) < 0 && errno == EINTR) {
    }
    return polled[1].revents == 0;
  }

  LineSplitter lines_;
  int stop_;
  std::thread thread_;
};

LineInput::LineInput(std::function<void(std::string)> on_line)
    : reader_(std::make_unique<Reader>(std::move(on_line))) {}
LineInput::~LineInput() = default;

}  // namespace qv5123
