#include "support/pty_line_posix.h"

#include <asm/termbits.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace qv5123 {
namespace {

int checked(int result, const char* what) {
  if (result < 0) throw std::runtime_error(what);
  return result;
}

termios2 line_of(int fd) {
  termios2 line{};
  checked(ioctl(fd, TCGETS2, &line), "TCGETS2");
  return line;
}

void set_raw(int fd) {
  termios2 line = line_of(fd);
  line.c_iflag = line.c_oflag = line.c_lflag = 0;
  checked(ioctl(fd, TCSETS2, &line), "TCSETS2");
}

}  // namespace

PtyLine::PtyLine(std::string link) : link_(std::move(link)) {
  plug_in();
}

PtyLine::~PtyLine() {
  hang_up();
}

void PtyLine::plug_in() {
  far_end_ = checked(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "posix_openpt");
  checked(grantpt(far_end_), "grantpt");
  checked(unlockpt(far_end_), "unlockpt");
  std::array<char, 64> name{};
  checked(-ptsname_r(far_end_, name.data(), name.size()), "ptsname");
  near_end_ = checked(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC), "open near end");
  set_raw(near_end_);
  unlink(link_.c_str());
  checked(symlink(name.data(), link_.c_str()), "symlink");
  start_reading();
}

void PtyLine::hang_up() {
  if (far_end_ < 0) return;
  stop_reading();
  unlink(link_.c_str());
  if (near_end_ >= 0) close(near_end_);
  close(far_end_);
  near_end_ = far_end_ = -1;
}

void PtyLine::leave_to_others() {
  close(near_end_);
  near_end_ = -1;
}

void PtyLine::stall() {
  stop_reading();
}

bool PtyLine::full() const {
  const int near_end =
      checked(open(link_.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "open near end");
  pollfd polled{near_end, POLLOUT, 0};
  poll(&polled, 1, 0);
  close(near_end);
  // Its first stop is full long before all that lies behind is.
  constexpr int kFirstStop = 4095;
  int waiting = 0;
  checked(ioctl(far_end_, FIONREAD, &waiting), "FIONREAD");
  return waiting >= kFirstStop && (polled.revents & POLLOUT) == 0;
}

void PtyLine::start_reading() {
  stop_ = checked(eventfd(0, EFD_CLOEXEC), "eventfd");
  reader_ = std::thread([this] { read_far_end(); });
}

void PtyLine::stop_reading() {
  if (!reader_.joinable()) return;
  eventfd_write(stop_, 1);
  reader_.join();
  close(stop_);
}

void PtyLine::read_far_end() {
  std::array<char, 4096> buffer;
  while (true) {
    pollfd polled[] = {{far_end_, POLLIN, 0}, {stop_, POLLIN, 0}};
    if (poll(polled, 2, -1) < 0) continue;
    if (polled[1].revents != 0) return;
    const ssize_t count = read(far_end_, buffer.data(), buffer.size());
    if (count < 0 && errno == EIO && near_end_ < 0) {
      poll(polled + 1, 1, 5);  // nobody has it open at present
      continue;
    }
    if (count <= 0) return;
    take({buffer.data(), static_cast<std::size_t>(count)});
  }
}

void PtyLine::take(std::string_view bytes) {
  PtyLine* other = nullptr;
  {
    const std::lock_guard lock(mutex_);
    other = other_;
    if (!other) received_ += bytes;
  }
  if (other) return other->send(bytes);
  arrived_.notify_all();
}

void PtyLine::pass_on_to(PtyLine& other) {
  const std::lock_guard lock(mutex_);
  other_ = &other;
}

std::string PtyLine::received(std::size_t count) {
  std::unique_lock lock(mutex_);
  arrived_.wait_for(lock, std::chrono::seconds(30), [&] { return received_.size() >= count; });
  return std::exchange(received_, {});
}

void PtyLine::send(std::string_view bytes) {
  while (!bytes.empty())
    bytes.remove_prefix(static_cast<std::size_t>(
        checked(static_cast<int>(write(far_end_, bytes.data(), bytes.size())), "write to the far end")));
}

std::uint32_t PtyLine::baud_rate() const {
  return line_of(far_end_).c_ospeed;
}

}  // namespace qv5123
