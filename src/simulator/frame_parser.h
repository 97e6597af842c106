#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>

#include "link/register_write.h"

namespace qv5123 {

/// A command letter between frames: what the next block transfer brings.
enum class CommandLetter : char { firmware = 'A', font = 'C', user_data = 'U' };

using ChipCommand = std::variant<RegisterWrite, CommandLetter>;

/// Finds frames "@aavv*" and command letters in a byte stream that may hold anything else: "@2f01*\r\nA" is a
/// write of 1 to register 0x2F and the letter of a firmware download, "@2f@3001*" a write to register 0x30
/// alone.
///
/// Digits of either case are accepted. A frame that goes wrong is dropped without a trace, and the byte that
/// broke it is looked at afresh, so that a "@" always starts a frame.
class FrameParser {
 public:
  /// The command that `byte` completes, if it does.
  std::optional<ChipCommand> feed(std::uint8_t byte);
  void reset() { filled_ = 0; }

 private:
  std::optional<ChipCommand> between_frames(std::uint8_t byte);
  std::optional<ChipCommand> inside_frame(std::uint8_t byte);

  std::size_t filled_ = 0;  ///< bytes of the current frame seen, 0 between frames
  std::uint16_t digits_ = 0;
};

}  // namespace qv5123
