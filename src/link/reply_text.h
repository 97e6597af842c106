#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/hex.h"
#include "link/register_write.h"

namespace qv5123 {

/// The characters of a reply block are hex digits, two to a byte. These read them by character position;
/// a character past the end, like one that is no hex digit, counts as 0.
inline int reply_digit(std::string_view reply, std::size_t position) {
  return position < reply.size() ? hex_value(static_cast<unsigned char>(reply[position])) : 0;
}

inline bool all_hex_digits(std::string_view text) {
  return text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

/// False when the line has damaged the reply: what is no digit counts as 0 and looks like the chip's own, and
/// one digit that was lost or doubled shifts all behind it.
inline bool whole_bytes(std::string_view reply) {
  return reply.size() % 2 == 0 && all_hex_digits(reply);
}

/// Two characters from `position` on, high digit first: 0..255.
inline int reply_byte_at(std::string_view reply, std::size_t position) {
  return reply_digit(reply, position) * 16 + reply_digit(reply, position + 1);
}

/// The i-th hex pair of the reply.
inline std::uint8_t reply_byte(std::string_view reply, std::size_t i) {
  return static_cast<std::uint8_t>(reply_byte_at(reply, 2 * i));
}

/// Four characters from `position` on, most significant first: 0..65535.
inline int reply_word_at(std::string_view reply, std::size_t position) {
  return reply_byte_at(reply, position) * 256 + reply_byte_at(reply, position + 2);
}

/// A 12-bit value in a group of four characters, of which the first is skipped.
inline int reply_12_bits_at(std::string_view reply, std::size_t position) {
  return reply_word_at(reply, position) & 0xFFF;
}

}  // namespace qv5123
