#include "console/startup_reply.h"

#include <optional>

#include "base/text.h"
#include "link/reply_text.h"

namespace qv5123 {

std::string StartupReply::read(ReplyBuffer& reply) {
  std::string text;
  if (stage_ == Stage::version) {
    // Its content does not matter, and so neither does one that is longer than the buffer.
    if (reply.state() == ReplyBuffer::State::complete) text = "\r\nLoad Version ok..";
  } else if (const std::optional<std::string> block = reply.take_block()) {
    if (stage_ == Stage::serial_number) {
      take_serial_number(*block);
      text = "\r\nLoad Serial_Number ok..";
    } else {
      take_values(*block);
    }
  }
  reply.clear();
  stage_ = Stage::done;
  return text;
}

void StartupReply::take_serial_number(std::string_view block) {
  constexpr std::size_t kFirst = 18;
  std::string characters;
  for (std::size_t i = kFirst; i < kFirst + 9; ++i) {
    characters += static_cast<char>(reply_byte(block, i));
  }
  // A zero ends the string, as it ends every formatted text.
  serial_number_ = latin1_to_utf8(std::string_view(characters).substr(0, characters.find('\0')));
}

void StartupReply::take_values(std::string_view block) {
  std::size_t position = 0;
  for (std::uint16_t& word : values_.words) {
    word = static_cast<std::uint16_t>(reply_12_bits_at(block, position));
    position += 4;
  }
  for (std::uint8_t& byte : values_.bytes) {
    byte = static_cast<std::uint8_t>(reply_byte_at(block, position));
    position += 2;
  }
  // A block holds at most 500 characters, so the end of the table is always 0.
  for (std::uint8_t& byte : values_.table) {
    byte = static_cast<std::uint8_t>(reply_byte_at(block, position));
    position += 2;
  }
}

}  // namespace qv5123
