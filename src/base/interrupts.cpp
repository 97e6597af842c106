#include "base/interrupts.h"

#include <algorithm>
#include <utility>

namespace qv5123 {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

Interrupts::Interrupts(std::function<void()> on_interrupt, ByForce by_force)
    : on_interrupt_(std::move(on_interrupt)),
      by_force_(std::move(by_force)),
      thread_(&Interrupts::watch, this) {}

Interrupts::~Interrupts() {
  requests_.wake();
  thread_.join();
}

void Interrupts::heard() {
  const MutexLock lock(mutex_);
  heard_by_.reset();
}

void Interrupts::ending() {
  const MutexLock lock(mutex_);
  if (!ended_by_) ended_by_ = Clock::now() + kEndedWithin;
}

/// Nothing where the program is in no delay; 0 when it is late.
std::optional<milliseconds> Interrupts::time_left() {
  const MutexLock lock(mutex_);
  if (!heard_by_ && !ended_by_) return std::nullopt;
  const Time end = std::min(heard_by_.value_or(Time::max()), ended_by_.value_or(Time::max()));
  return std::max(milliseconds(0), std::chrono::ceil<milliseconds>(end - Clock::now()));
}

void Interrupts::watch() {
  // heard() and ending() wake nobody, so from the first request on they are looked for.
  constexpr milliseconds kLook{100};
  bool requested = false;
  while (true) {
    const std::optional<milliseconds> left = time_left();
    if (left && left->count() == 0) end_program_at_once(by_force_.last_words, by_force_.code);
    std::optional<milliseconds> time;
    if (requested) time = std::min(kLook, left.value_or(kLook));
    const auto waited = requests_.wait(time);
    if (waited == StopRequests::Wait::woken) return;
    if (waited != StopRequests::Wait::request) continue;
    requested = true;
    {
      const MutexLock lock(mutex_);
      if (!heard_by_) heard_by_ = Clock::now() + by_force_.heard_within;
    }
    on_interrupt_();
  }
}

}  // namespace qv5123
