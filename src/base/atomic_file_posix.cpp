#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/atomic_file.h"

namespace qv5123::detail {
namespace {

std::string last_error() {
  return std::generic_category().message(errno);
}

bool write_all(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool read_all(int file, char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = ::read(file, bytes, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

std::string fill_from(int file, std::string& bytes) {
  struct stat status;
  if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return "it is not a regular file";
  return read_all(file, bytes.data(), bytes.size()) ? "" : "it cannot be read to its end";
}

// A file that is replaced keeps its permissions; a new one takes those of the user's mask.
bool take_permissions(int file, const std::filesystem::path& like) {
  struct stat status;
  if (::stat(like.c_str(), &status) != 0) return true;
  return ::fchmod(file, status.st_mode & 07777) == 0;
}

}  // namespace

NewFile write_new_file(const std::filesystem::path& temporary, std::string_view bytes,
                       const std::filesystem::path& like) {
  // Renaming asks for no more than the folder's permission; the file may be protected all the same.
  if (::faccessat(AT_FDCWD, like.c_str(), W_OK, AT_EACCESS) != 0 && errno != ENOENT)
    return {last_error(), false, false};
  const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file < 0) {
    const bool taken = errno == EEXIST;
    return {last_error(), false, taken};
  }
  NewFile made;
  made.is_there = true;
  if (!write_all(file, bytes) || !take_permissions(file, like) || ::fsync(file) != 0) made.why = last_error();
  if (::close(file) != 0 && made.why.empty()) made.why = last_error();
  return made;
}

std::string rename_over(const std::filesystem::path& temporary, const std::filesystem::path& target) {
  if (::rename(temporary.c_str(), target.c_str()) != 0) return last_error();
  // The new name survives a power cut only once the folder itself is on the disk. Some file systems cannot
  // do that; the file is in its place all the same.
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return {};
  ::fsync(handle);
  ::close(handle);
  return {};
}

std::string fill_from_file(const std::filesystem::path& path, std::string& bytes) {
  // A pipe without a writer would hold up an open that waits.
  const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return last_error();
  const std::string why = fill_from(file, bytes);
  ::close(file);
  return why;
}

bool is_own_file(const std::filesystem::path& path) {
  struct stat status;
  return ::lstat(path.c_str(), &status) == 0 && status.st_uid == ::geteuid();
}

unsigned long process_number() {
  return static_cast<unsigned long>(::getpid());
}

}  // namespace qv5123::detail
