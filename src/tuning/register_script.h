#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <istream>
#include <memory>

#include "base/hex.h"
#include "link/register_write.h"

namespace qv5123 {

/// Plays a file of ISP register writes, one per tick of kTick. A line is "AAA,DD": three hex digits of
/// address, a separator that is not looked at, two hex digits of data. Line breaks are LF or CR LF.
///
/// A line is kept until the next one is read over it, and only its address is cleared once it was sent. So
/// a line that is too short for its data takes the digits that stand there from lines before, and a file
/// that ends with a line break makes a last write, of the data before it, to address 000.
class RegisterScript {
 public:
  static constexpr std::chrono::milliseconds kTick{200};

  /// Longest piece that is read at once; the rest of a longer line is read as a line of its own.
  static constexpr std::size_t kLongest = 99;

  explicit RegisterScript(std::unique_ptr<std::istream> file);

  struct Step {
    /// The file was at its end: it is closed, there is no next tick.
    bool finished = false;
    /// Empty for a blank line.
    Batch batch;
  };
  Step tick();

 private:
  void read_line();
  int next_character();
  bool blank() const { return line_[0] == '\n' && line_[1] == '\0'; }
  int digit(std::size_t position) const { return hex_value(static_cast<unsigned char>(line_[position])); }

  std::unique_ptr<std::istream> file_;
  std::array<char, kLongest + 1> line_{};
  bool at_end_ = false;
};

}  // namespace qv5123
