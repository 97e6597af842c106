#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "link/reply_buffer.h"

namespace qv5123 {

/// The one look, 500 ms after the port was opened, at what the chip reported by itself.
class StartupReply {
 public:
  static constexpr int kDelayMs = 500;

  enum class Stage { version = 0, serial_number = 1, done = 2 };

  /// The values of a reply in the last stage. Nothing uses them yet.
  struct Values {
    std::array<std::uint16_t, 48> words{};  ///< 12 bits each, three groups of 16
    std::array<std::uint8_t, 16> bytes{};
    std::array<std::uint8_t, 200> table{};
  };

  explicit StartupReply(Stage stage = Stage::version) : stage_(stage) {}

  /// Takes a complete reply, if one waits, as its stage says, and returns the text for the console, which
  /// may be empty. Whatever came of it, the reply buffer is empty afterwards and the stage is the last.
  std::string read(ReplyBuffer& reply);

  Stage stage() const { return stage_; }
  /// Nine 8-bit characters as UTF-8; empty until a reply brought them.
  const std::string& serial_number() const { return serial_number_; }
  const Values& values() const { return values_; }

 private:
  void take_serial_number(std::string_view block);
  void take_values(std::string_view block);

  Stage stage_;
  std::string serial_number_;
  Values values_;
};

}  // namespace qv5123
