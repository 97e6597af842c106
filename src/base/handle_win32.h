#pragma once

#include <windows.h>

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

}  // namespace qv5123
