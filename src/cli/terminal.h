#pragma once

#include <functional>
#include <memory>
#include <string>

namespace qv5123 {

/// Whether somebody watches stderr as it comes.
bool stderr_is_terminal();

/// Whether nobody will ever read what is written to stdout, where the system tells without a write.
bool stdout_reader_gone();

/// From now on a reader that has gone makes writes fail instead of ending the program, and nothing that is
/// opened takes the place of a standard stream that the program was started without.
void prepare_standard_streams();

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
