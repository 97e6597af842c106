#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/append_file.h"
#include "base/atomic_file.h"

namespace qv5123 {
namespace {

class OpenFile {
 public:
  explicit OpenFile(const std::filesystem::path& path)
      : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666)) {}
  ~OpenFile() {
    if (file_ >= 0) ::close(file_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int get() const { return file_; }

 private:
  const int file_;
};

/// Where the last whole line ends; -1 on an error.
off_t end_of_lines(int file, off_t size) {
  for (off_t end = size; end > 0; --end) {
    char last = 0;
    if (::pread(file, &last, 1, end - 1) != 1) return -1;
    if (last == '\n') return end;
  }
  return 0;
}

bool write_at(int file, std::string_view bytes, off_t at) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(file, bytes.data(), bytes.size(), at);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
    at += written;
  }
  return true;
}

bool append(int file, std::string_view bytes) {
  struct stat status;
  if (::fstat(file, &status) != 0) return false;
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
    return false;
  }
  const off_t end = end_of_lines(file, status.st_size);
  if (end < 0 || (end < status.st_size && ::ftruncate(file, end) != 0)) return false;
  if (write_at(file, bytes, end) && ::fsync(file) == 0) return true;
  const int error = errno;
  if (::ftruncate(file, end) == 0) ::fsync(file);
  errno = error;
  return false;
}

/// A new file is there after a power cut only once its folder is on the disk.
void sync_folder(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  ::fsync(handle);
  ::close(handle);
}

}  // namespace

std::string append_line(const std::filesystem::path& path, std::string_view line) {
  std::error_code ignored;
  const bool is_new = !std::filesystem::exists(path, ignored);
  const OpenFile file(path);
  if (file.get() < 0 || !append(file.get(), std::string(line) + "\n"))
    return "Cannot write " + path_text(path) + ": " + std::generic_category().message(errno);
  if (is_new) sync_folder(path);
  return {};
}

}  // namespace qv5123
