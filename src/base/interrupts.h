#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "base/mutex.h"
#include "base/stop_requests.h"

namespace qv5123 {

/// While it lives, the system's requests to end the program (Ctrl-C, and SIGTERM and SIGHUP where there are
/// such) are told here instead of ending it. To be made before any thread is started.
class Interrupts {
 public:
  /// How long it may take for its end after ending().
  static constexpr std::chrono::milliseconds kEndedWithin{2000};

  /// What a program says and returns that is ended by force.
  struct ByForce {
    std::string last_words;
    int code;
    /// How long it may take from a request to heard().
    std::chrono::milliseconds heard_within{1000};
  };

  /// `on_interrupt` is called on a thread of its own, once for each request. If the program does not call
  /// heard() in time, since it waits for a file, a pipe or a driver, it is ended all the same.
  Interrupts(std::function<void()> on_interrupt, ByForce by_force);
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  /// All requests so far were heard. From any thread.
  void heard();
  /// Because of a request the program now ends; must be over within kEndedWithin. From any thread.
  void ending();

 private:
  using Time = std::chrono::steady_clock::time_point;
  void watch();
  std::optional<std::chrono::milliseconds> time_left();

  const std::function<void()> on_interrupt_;
  const ByForce by_force_;
  StopRequests requests_;
  Mutex mutex_;
  std::optional<Time> heard_by_ GUARDED_BY(mutex_);
  std::optional<Time> ended_by_ GUARDED_BY(mutex_);
  std::thread thread_;
};

}  // namespace qv5123
