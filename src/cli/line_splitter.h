#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace qv5123 {

/// Makes lines of text that comes in pieces. LF and CR LF end a line.
class LineSplitter {
 public:
  /// More than this without a line end is handed on as a line.
  static constexpr std::size_t kLongest = 65536;

  explicit LineSplitter(std::function<void(std::string)> on_line) : on_line_(std::move(on_line)) {}

  void add(std::string_view text) {
    for (const char c : text) {
      if (c == '\n' || line_.size() == kLongest) hand_on();
      if (c != '\n') line_ += c;
    }
  }
  /// What the text ended with, if no line end followed it.
  void end() {
    if (!line_.empty()) hand_on();
  }

 private:
  void hand_on() {
    if (line_.ends_with('\r')) line_.pop_back();
    on_line_(std::exchange(line_, {}));
  }

  std::function<void(std::string)> on_line_;
  std::string line_;
};

}  // namespace qv5123
