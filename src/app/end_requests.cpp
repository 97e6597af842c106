#include "app/end_requests.h"

#include <utility>

namespace qv5123 {

EndRequests::EndRequests(std::function<void()> end_process)
    : end_process_(std::move(end_process)), interrupts_([this] { requested(); }) {}

void EndRequests::pass_on_to(std::function<void()> on_first) {
  const std::lock_guard lock(mutex_);
  on_first_ = std::move(on_first);
}

void EndRequests::requested() {
  const std::lock_guard lock(mutex_);
  const auto on_first = std::exchange(on_first_, {});
  if (!on_first) return end_process_();
  on_first();
}

}  // namespace qv5123
