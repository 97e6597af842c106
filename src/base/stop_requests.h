#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace qv5123 {

/// The system's requests to end the program: Ctrl-C, the console's end, and SIGTERM and SIGHUP where there
/// are such. While it lives they no longer end it by themselves, and an output that nobody reads any more
/// fails instead of ending the program. To be made before any thread is started.
class StopRequests {
 public:
  StopRequests();
  ~StopRequests();
  StopRequests(const StopRequests&) = delete;
  StopRequests& operator=(const StopRequests&) = delete;

  enum class Wait { request, time_over, woken };
  /// Waits for the next one, without a time for ever. One thread.
  Wait wait(std::optional<std::chrono::milliseconds> time);
  /// Ends the wait for good, from any thread.
  void wake();

 private:
  class System;
  std::unique_ptr<System> system_;
};

/// Writes `text` to stderr if that takes it within `patience`: last words that nobody reads hold nothing up.
/// Where stderr is a pipe, the first 4 KiB of them.
void write_last_words(const std::string& text, std::chrono::milliseconds patience);

/// Ends the program with `code` whatever its threads are at. `text` is written to stderr if that takes it.
[[noreturn]] void end_program_at_once(const std::string& text, int code);

}  // namespace qv5123
