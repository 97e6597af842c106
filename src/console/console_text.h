#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv5123 {

/// What an append did to the console's text, for a control that follows it: first empty it if `cleared`, then
/// take away the first `dropped` positions, then append.
struct ConsoleChange {
  bool cleared = false;
  std::size_t dropped = 0;  ///< UTF-16 units, a line end counting as one
  std::string appended;     ///< UTF-8, line ends are "\n"
};

/// The text of the console: what the chip says and what the program adds. Carriage returns are left out, the
/// line feed alone ends a line.
class ConsoleText {
 public:
  /// More lines than this, found when further text arrives, empty the console, and that text goes too.
  static constexpr std::size_t kLineLimit = 10240;
  /// Beyond this many characters the oldest go, down to three quarters so that it happens rarely.
  static constexpr std::size_t kCharacterLimit = 0x100000;

  /// Text from the chip, 8-bit characters. Observes the line limit.
  ConsoleChange append_received(std::string_view latin1);
  /// Text of the program's own, UTF-8.
  ConsoleChange append(std::string_view utf8);
  /// "Clear".
  void clear();

  /// UTF-8 of what is shown.
  std::string_view text() const { return std::string_view(text_).substr(start_); }
  /// As a text control counts them: 1 for an empty text.
  std::size_t lines() const { return line_ends_ + 1; }
  std::size_t characters() const { return units_; }

 private:
  ConsoleChange take(std::string added);
  std::size_t drop(std::size_t units);

  std::string text_;
  std::size_t start_ = 0;  // what is before it has been dropped
  std::size_t units_ = 0;
  std::size_t line_ends_ = 0;
};

}  // namespace qv5123
