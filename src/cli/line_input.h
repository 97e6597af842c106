#pragma once

#include <functional>
#include <memory>
#include <string>

namespace qv5123 {

/// Reads stdin by lines for as long as it lives.
class LineInput {
 public:
  /// `on_line` is called with each line, without its end, on a thread of its own.
  explicit LineInput(std::function<void(std::string)> on_line);
  /// Returns at once, whatever the other end of stdin does.
  ~LineInput();
  LineInput(const LineInput&) = delete;
  LineInput& operator=(const LineInput&) = delete;

 private:
  class Reader;
  std::unique_ptr<Reader> reader_;
};

}  // namespace qv5123
