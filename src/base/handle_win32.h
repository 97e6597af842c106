#pragma once

#include <windows.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace qv5123 {

/// Owns a Windows handle; INVALID_HANDLE_VALUE and null both stand for none.
class Handle {
 public:
  explicit Handle(HANDLE handle = nullptr) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { reset(); }

  void reset() {
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = nullptr;
  }
  HANDLE get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  HANDLE handle_;
};

/// Writes where the file stands, piece after piece. The error is the system's last one.
inline bool write_all(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    const DWORD piece = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1u << 20));
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), piece, &written, nullptr)) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

}  // namespace qv5123
