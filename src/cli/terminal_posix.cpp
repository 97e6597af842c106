#include "cli/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <initializer_list>

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

}  // namespace qv5123
