#include "simulator/frame_parser.h"

#include "base/hex.h"

namespace qv5123 {
namespace {

constexpr std::size_t kDigitsEnd = 5;

bool is_hex_digit(std::uint8_t byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

}  // namespace

std::optional<ChipCommand> FrameParser::feed(std::uint8_t byte) {
  return filled_ == 0 ? between_frames(byte) : inside_frame(byte);
}

std::optional<ChipCommand> FrameParser::between_frames(std::uint8_t byte) {
  switch (byte) {
    case '@':
      filled_ = 1;
      digits_ = 0;
      return std::nullopt;
    case 'A':
    case 'C':
    case 'U':
      return CommandLetter{static_cast<char>(byte)};
    default:
      return std::nullopt;
  }
}

std::optional<ChipCommand> FrameParser::inside_frame(std::uint8_t byte) {
  if (filled_ < kDigitsEnd && is_hex_digit(byte)) {
    digits_ = static_cast<std::uint16_t>(digits_ << 4 | hex_value(byte));
    ++filled_;
    return std::nullopt;
  }
  const bool complete = filled_ == kDigitsEnd && byte == '*';
  filled_ = 0;
  if (complete) return RegisterWrite{high_byte(digits_), low_byte(digits_)};
  return between_frames(byte);
}

}  // namespace qv5123
