#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

/// libFuzzer calls this with every input; each target defines it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace qv5123::fuzz {

/// What must be so whatever the input is. A breach ends the program, and libFuzzer keeps the input.
inline void require(bool so, const char* what) {
  if (so) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

inline std::string_view text_of(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Cuts the input in pieces: each begins with a byte that says how long it is, 1..64.
class Pieces {
 public:
  Pieces(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  bool left() const { return !rest_.empty(); }
  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    const std::uint8_t first = rest_.front();
    rest_ = rest_.subspan(1);
    return first;
  }
  std::span<const std::uint8_t> next() {
    const std::size_t length = byte() % 64u + 1;
    const auto piece = rest_.first(length < rest_.size() ? length : rest_.size());
    rest_ = rest_.subspan(piece.size());
    return piece;
  }

 private:
  std::span<const std::uint8_t> rest_;
};

}  // namespace qv5123::fuzz
