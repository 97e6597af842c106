#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qv5123 {

/// The program's one picture of the chip's user (tuning) data: 1024 bytes that every tuning page copies its
/// values into and reloads them from. A word has its high byte first: 4000 for the lens shading's red
/// Parameter-1 is 0F A0 in the entries 440 and 441.
class UserDataImage {
 public:
  static constexpr std::size_t kSize = 1024;

  /// Stores the low 8 bits of `value`. An index outside 0..1023 is ignored.
  void set_entry(std::size_t index, int value) {
    if (index < kSize) bytes_[index] = static_cast<std::uint8_t>(value & 0xFF);
  }
  /// The entry, 0..255; 0 for an index outside 0..1023.
  std::uint8_t entry(std::size_t index) const { return index < kSize ? bytes_[index] : 0; }

  /// A 16-bit quantity kept in two consecutive entries, high byte first.
  void set_word(std::size_t index, int value) {
    set_entry(index, value >> 8);
    set_entry(index + 1, value);
  }
  int word(std::size_t index) const { return entry(index) * 256 + entry(index + 1); }

  /// True once a file has been read into the image; the gamma page's reload asks for it.
  bool loaded() const { return loaded_; }
  void mark_loaded() { loaded_ = true; }

  const std::array<std::uint8_t, kSize>& bytes() const { return bytes_; }
  void assign(const std::array<std::uint8_t, kSize>& bytes) { bytes_ = bytes; }

  friend bool operator==(const UserDataImage& a, const UserDataImage& b) { return a.bytes_ == b.bytes_; }

 private:
  std::array<std::uint8_t, kSize> bytes_{};
  bool loaded_ = false;
};

}  // namespace qv5123
