#include <windows.h>

#include <fstream>
#include <system_error>

#include "base/atomic_file.h"
#include "base/handle_win32.h"

namespace qv5123::detail {
namespace {

std::string last_error() {
  return std::system_category().message(static_cast<int>(GetLastError()));
}

}  // namespace

// Files inherit their permissions from the folder here, so `like` has nothing to add.
NewFile write_new_file(const std::filesystem::path& temporary, std::string_view bytes,
                       const std::filesystem::path&) {
  const HANDLE file =
      CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const bool taken = GetLastError() == ERROR_FILE_EXISTS;
    return {last_error(), false, taken};
  }
  NewFile made;
  made.is_there = true;
  if (!write_all(file, bytes) || !FlushFileBuffers(file)) made.why = last_error();
  if (!CloseHandle(file) && made.why.empty()) made.why = last_error();
  return made;
}

std::string rename_over(const std::filesystem::path& temporary, const std::filesystem::path& target) {
  const DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  return MoveFileExW(temporary.c_str(), target.c_str(), flags) ? std::string() : last_error();
}

std::string fill_from_file(const std::filesystem::path& path, std::string& bytes) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "it cannot be opened";
  const bool filled(file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())));
  return filled ? "" : "it cannot be read to its end";
}

// The name tells enough: who may write in a folder here is who may remove from it.
bool is_own_file(const std::filesystem::path&) {
  return true;
}

unsigned long process_number() {
  return GetCurrentProcessId();
}

}  // namespace qv5123::detail
