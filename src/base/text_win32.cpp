#include "base/text_win32.h"

#include <windows.h>

#include <array>

namespace qv5123 {

std::wstring to_wide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string to_utf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string utf8(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), static_cast<int>(utf8.size()), nullptr,
                      nullptr);
  return utf8;
}

std::string system_message(unsigned long error) {
  std::array<wchar_t, 512> buffer;
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                      error, 0, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
  std::wstring_view text(buffer.data(), length);
  while (!text.empty() && (text.back() < L' ' || text.back() == L' ' || text.back() == L'.'))
    text.remove_suffix(1);
  return text.empty() ? "error " + std::to_string(error) : to_utf8(text);
}

}  // namespace qv5123
