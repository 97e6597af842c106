#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "link/register_write.h"
#include "simulator/frame_parser.h"
#include "tuning/raw_access.h"

namespace qv5123 {

/// Says what a reply block means, from what was asked before it.
class ReplyMeaning {
 public:
  /// Notes what goes to the chip: the last request in it is what the next block answers.
  void note_sent(std::string_view bytes);
  /// The block in words: "0xF922 = 0x12" for a register, "awb.a_slope = 12, ..." for a page, else its bytes.
  /// One line.
  std::string of(std::string_view block);

 private:
  struct Read {
    Access access;
    int address;
  };
  void note(RegisterWrite write);

  FrameParser parser_;
  RegisterWrite last_;
  std::optional<Read> read_;
  std::optional<std::uint8_t> trigger_;
};

}  // namespace qv5123
