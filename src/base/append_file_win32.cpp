#include <windows.h>

#include <algorithm>
#include <system_error>

#include "base/append_file.h"
#include "base/atomic_file.h"

namespace qv5123 {
namespace {

class OpenFile {
 public:
  explicit OpenFile(const std::filesystem::path& path)
      : file_(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                          nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  ~OpenFile() {
    if (file_ != INVALID_HANDLE_VALUE) CloseHandle(file_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  HANDLE get() const { return file_; }

 private:
  const HANDLE file_;
};

bool go_to(HANDLE file, long long at) {
  LARGE_INTEGER place;
  place.QuadPart = at;
  return SetFilePointerEx(file, place, nullptr, FILE_BEGIN) != 0;
}

/// Where the last whole line ends; -1 on an error.
long long end_of_lines(HANDLE file, long long size) {
  for (long long end = size; end > 0; --end) {
    char last = 0;
    DWORD read = 0;
    if (!go_to(file, end - 1) || !ReadFile(file, &last, 1, &read, nullptr) || read != 1) return -1;
    if (last == '\n') return end;
  }
  return 0;
}

bool write_all(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    const DWORD piece = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1u << 20));
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), piece, &written, nullptr)) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

bool append(HANDLE file, std::string_view bytes) {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(file, &size)) return false;
  const long long end = end_of_lines(file, size.QuadPart);
  if (end < 0 || !go_to(file, end)) return false;
  if (end < size.QuadPart && !SetEndOfFile(file)) return false;
  if (write_all(file, bytes) && FlushFileBuffers(file)) return true;
  const DWORD error = GetLastError();
  if (go_to(file, end)) SetEndOfFile(file);
  SetLastError(error);
  return false;
}

}  // namespace

std::string append_line(const std::filesystem::path& path, std::string_view line) {
  const OpenFile file(path);
  if (file.get() == INVALID_HANDLE_VALUE || !append(file.get(), std::string(line) + "\n"))
    return "Cannot write " + path_text(path) + ": " +
           std::system_category().message(static_cast<int>(GetLastError()));
  return {};
}

}  // namespace qv5123
