// Preloaded into Wine, so that the pseudo-terminals which the tests use as COM ports behave as ports do where
// Wine leaves it to the kernel: they have modem lines (without any, Wine gives up a wait for a character at
// once), and only one program at a time can open them (Wine checks the sharing of files only).

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>

namespace {

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool is_pseudo_terminal(int fd) {
  struct stat status {};
  return fstat(fd, &status) == 0 && S_ISCHR(status.st_mode) && major(status.st_rdev) >= 136 &&
         major(status.st_rdev) <= 143;
}

int open_exclusively(const char* name, int flags, mode_t mode) {
  static const auto real = next<int(const char*, int, ...)>("open64");
  const int fd = real(name, flags, mode);
  if (fd < 0 || !is_pseudo_terminal(fd) || flock(fd, LOCK_EX | LOCK_NB) == 0) return fd;
  close(fd);
  errno = EACCES;  // what becomes ERROR_ACCESS_DENIED, as Windows says it of a port in use
  return -1;
}

}  // namespace

extern "C" int open(const char* name, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return open_exclusively(name, flags, mode);
}

extern "C" int open64(const char*, int, ...) __attribute__((alias("open")));

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept {
  static const auto real = next<int(int, unsigned long, ...)>("ioctl");
  va_list arguments;
  va_start(arguments, request);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  const int result = real(fd, request, argument);
  if (result == 0 || errno != ENOTTY || !is_pseudo_terminal(fd)) return result;
  if (request == TIOCMGET)
    *static_cast<int*>(argument) = TIOCM_DTR | TIOCM_RTS | TIOCM_CTS | TIOCM_DSR | TIOCM_CAR;
  const bool modem_lines =
      request == TIOCMGET || request == TIOCMSET || request == TIOCMBIS || request == TIOCMBIC;
  return modem_lines ? 0 : result;
}
