#pragma once

#include "base/background.h"

namespace qv5123::test {

/// Background work done on the spot, so that a test needs no thread; held back while `busy` is set.
class InlineBackground final : public Background {
 public:
  bool busy = false;

  std::size_t waiting() const { return waiting_.size(); }
  /// Does what was held back.
  void catch_up() {
    while (!waiting_.empty()) {
      const auto work = std::move(waiting_.front());
      waiting_.pop_front();
      work()();
    }
  }

 private:
  void start(std::function<Finish()> work) override {
    waiting_.push_back(std::move(work));
    if (!busy) catch_up();
  }

  std::deque<std::function<Finish()>> waiting_;
};

}  // namespace qv5123::test
