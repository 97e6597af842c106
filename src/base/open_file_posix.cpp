#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/open_file.h"

namespace qv5123 {
namespace {

bool sync_folder(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  // Some file systems cannot do that; the file is there all the same.
  if (handle < 0) return true;
  ::fsync(handle);
  return ::close(handle) == 0;
}

}  // namespace

// A pipe without another end would hold up an open that waits.
OpenFile::OpenFile(const std::filesystem::path& path) : path_(path) {
  std::error_code ignored;
  is_new_ = !std::filesystem::exists(path, ignored);
  handle_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
  if (handle_ < 0) failed();
}

OpenFile::~OpenFile() {
  if (is_open()) ::close(static_cast<int>(handle_));
}

bool OpenFile::is_open() const {
  return handle_ >= 0;
}

bool OpenFile::failed() {
  error_ = std::generic_category().message(errno);
  return false;
}

std::int64_t OpenFile::size() {
  struct stat status;
  if (::fstat(static_cast<int>(handle_), &status) == 0 && S_ISREG(status.st_mode)) return status.st_size;
  error_ = "it is not a regular file";
  return -1;
}

bool OpenFile::read(std::int64_t at, char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t taken = ::pread(static_cast<int>(handle_), bytes, count, at);
    if (taken < 0 && errno == EINTR) continue;
    if (taken < 0) return failed();
    if (taken == 0) {
      error_ = "somebody cut it meanwhile";
      return false;
    }
    bytes += taken;
    count -= static_cast<std::size_t>(taken);
    at += taken;
  }
  return true;
}

bool OpenFile::write(std::int64_t at, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(static_cast<int>(handle_), bytes.data(), bytes.size(), at);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return failed();
    bytes.remove_prefix(static_cast<std::size_t>(written));
    at += written;
  }
  return true;
}

bool OpenFile::cut(std::int64_t size) {
  return ::ftruncate(static_cast<int>(handle_), size) == 0 || failed();
}

bool OpenFile::sync() {
  if (::fsync(static_cast<int>(handle_)) != 0) return failed();
  return !is_new_ || sync_folder(path_) || failed();
}

}  // namespace qv5123
