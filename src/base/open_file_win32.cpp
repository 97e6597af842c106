#include <windows.h>

#include <system_error>

#include "base/handle_win32.h"
#include "base/open_file.h"

namespace qv5123 {
namespace {

HANDLE handle_of(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

bool go_to(HANDLE file, std::int64_t at) {
  LARGE_INTEGER place;
  place.QuadPart = at;
  return SetFilePointerEx(file, place, nullptr, FILE_BEGIN) != 0;
}

}  // namespace

OpenFile::OpenFile(const std::filesystem::path& path)
    : path_(path),
      handle_(reinterpret_cast<std::intptr_t>(CreateFileW(
          path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
          nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr))) {
  if (!is_open()) failed();
}

OpenFile::~OpenFile() {
  if (is_open()) CloseHandle(handle_of(handle_));
}

bool OpenFile::is_open() const {
  return handle_of(handle_) != INVALID_HANDLE_VALUE;
}

bool OpenFile::failed() {
  error_ = std::system_category().message(static_cast<int>(GetLastError()));
  return false;
}

std::int64_t OpenFile::size() {
  LARGE_INTEGER size;
  const HANDLE file = handle_of(handle_);
  if (GetFileType(file) == FILE_TYPE_DISK && GetFileSizeEx(file, &size)) return size.QuadPart;
  error_ = "it is not a regular file";
  return -1;
}

bool OpenFile::read(std::int64_t at, char* bytes, std::size_t count) {
  const HANDLE file = handle_of(handle_);
  if (!go_to(file, at)) return failed();
  while (count > 0) {
    DWORD taken = 0;
    if (!ReadFile(file, bytes, static_cast<DWORD>(count), &taken, nullptr)) return failed();
    if (taken == 0) {
      error_ = "somebody cut it meanwhile";
      return false;
    }
    bytes += taken;
    count -= taken;
  }
  return true;
}

bool OpenFile::write(std::int64_t at, std::string_view bytes) {
  const HANDLE file = handle_of(handle_);
  return (go_to(file, at) && write_all(file, bytes)) || failed();
}

bool OpenFile::cut(std::int64_t size) {
  const HANDLE file = handle_of(handle_);
  return (go_to(file, size) && SetEndOfFile(file)) || failed();
}

// The folder's entry reaches the disk by itself here.
bool OpenFile::sync() {
  return FlushFileBuffers(handle_of(handle_)) || failed();
}

}  // namespace qv5123
