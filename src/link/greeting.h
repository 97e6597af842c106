#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "link/reply_buffer.h"

namespace qv5123 {

/// What a chip that starts tells of itself, in a block of its own behind its banner: 54 digits, no other
/// answer has so many.
struct Greeting {
  std::array<std::array<int, 3>, 3> versions{};  ///< HW, SW and ISP, each number 0..99
  std::string serial_number;                     ///< at most nine characters, UTF-8
};

inline constexpr std::size_t kGreetingDigits = 54;
/// Whether a reply block is a greeting.
bool is_greeting(std::string_view block);
/// Nothing where it is none.
std::optional<Greeting> greeting_of(std::string_view block);

/// Keeps the last greeting on a line, whoever else takes the replies.
class GreetingListener {
 public:
  void hear(std::span<const std::uint8_t> received);
  /// Another chip may be there from now on.
  void forget() { *this = {}; }
  const std::optional<Greeting>& last() const { return last_; }

 private:
  ReplyBuffer reply_;
  std::optional<Greeting> last_;
};

}  // namespace qv5123
