#include "link/open_port_posix.h"

#include <asm/termbits.h>
#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "link/port_holder_posix.h"
#include "link/serial_device.h"

namespace qv5123 {
namespace {

std::string group_name(gid_t gid) {
  std::array<char, 4096> buffer;
  group entry{};
  group* found = nullptr;
  getgrgid_r(gid, &entry, buffer.data(), buffer.size(), &found);
  return found != nullptr ? found->gr_name : std::to_string(gid);
}

/// What to do about a device that may not be opened: join its group, where the group may open it.
std::string permission_remedy(const std::string& name) {
  struct stat status {};
  constexpr mode_t kGroupMayUse = S_IRGRP | S_IWGRP;
  if (stat(name.c_str(), &status) != 0 || (status.st_mode & kGroupMayUse) != kGroupMayUse) return {};
  const std::string group = group_name(status.st_gid);
  return "It belongs to the group " + group + ": run \"sudo usermod -aG " + group +
         " $USER\", log out and in again, then open the port again.";
}

std::string words_of(const PortHolder& holder) {
  if (holder.pid == getpid()) return "this program";
  return holder.program + " (process " + std::to_string(holder.pid) + ")";
}

std::string holder_words(const std::string& name) {
  const std::optional<PortHolder> holder = find_port_holder(name);
  return holder ? words_of(*holder) : std::string();
}

OpenResult busy(const std::string& name) {
  return open_error(OpenError::busy, name, holder_words(name));
}

/// Whether the device is the program's end of a pseudo-terminal. The majors are the kernel's own,
/// UNIX98_PTY_SLAVE_MAJOR and the seven after it.
bool is_pseudo_terminal(const struct stat& status) {
  const unsigned device_major = major(status.st_rdev);
  return device_major >= 136 && device_major <= 143;
}

/// The lock holds off those who ask for it, the superuser included; the exclusive mode everybody else. On a
/// pseudo-terminal that mode would outlive a crash for as long as the other end is open, so it has the lock
/// only.
OpenResult take_exclusively(int fd, const struct stat& status, const std::string& name) {
  if (flock(fd, LOCK_EX | LOCK_NB) != 0) return busy(name);
  // Programs that ask for no lock hold the port all the same.
  const std::optional<PortHolder> holder = find_port_holder(name);
  if (holder && holder->pid != getpid()) return open_error(OpenError::busy, name, words_of(*holder));
  if (!is_pseudo_terminal(status)) ioctl(fd, TIOCEXCL);
  return {};
}

OpenResult check_terminal(int fd, const std::string& name) {
  termios2 line{};
  return ioctl(fd, TCGETS2, &line) == 0 ? OpenResult{} : system_error(errno, name);
}

}  // namespace

OpenResult system_error(int error, const std::string& name) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENXIO:
    case ENODEV:
    case EIO:  // the kernel keeps a name for it, but no hardware answers behind it
      return open_error(OpenError::not_found, name);
    case EACCES:
    case EPERM:
      return open_error(OpenError::permission_denied, name, permission_remedy(name));
    case EBUSY:
      return busy(name);
    case ENOTTY:
      return open_error(OpenError::not_a_port, name);
    default:
      return open_error(OpenError::failed, name, std::generic_category().message(error));
  }
}

OpenedPort open_port(const std::string& name) {
  struct stat status {};
  if (stat(name.c_str(), &status) != 0) return {-1, system_error(errno, name)};
  if (!S_ISCHR(status.st_mode)) return {-1, open_error(OpenError::not_a_port, name)};
  const int fd = open(name.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return {-1, system_error(errno, name)};
  OpenResult result = check_terminal(fd, name);
  if (result.ok()) result = take_exclusively(fd, status, name);
  if (result.ok()) return {fd, {}};
  close(fd);
  return {-1, result};
}

void discard_unsent(int fd) {
  int unsent = 0;
  if (ioctl(fd, TIOCOUTQ, &unsent) == 0 && unsent > 0) ioctl(fd, TCFLSH, TCOFLUSH);
}

void close_port(int fd) {
  discard_unsent(fd);
  ioctl(fd, TIOCNXCL);
  close(fd);
}

}  // namespace qv5123
