#pragma once

#include <functional>
#include <memory>

namespace qv5123 {

/// While it lives, the system's requests to end the program (Ctrl-C, and SIGTERM and SIGHUP where there are
/// such) are told here instead of ending it. To be made before any thread is started.
class Interrupts {
 public:
  /// `on_interrupt` is called on a thread of its own, once for each request.
  explicit Interrupts(std::function<void()> on_interrupt);
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

 private:
  class Watch;
  std::unique_ptr<Watch> watch_;
};

}  // namespace qv5123
