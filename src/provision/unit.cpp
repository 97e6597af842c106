#include "provision/unit.h"

#include <algorithm>
#include <utility>

#include "base/delay.h"
#include "base/text.h"
#include "link/indirect_access.h"
#include "link/quiet.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

/// So soon a stop is seen.
constexpr milliseconds kLongestDelay{200};
/// A chip announces itself when its line is opened; nothing is asked before it has.
constexpr milliseconds kGreeting{150};
constexpr milliseconds kLongestGreeting{1500};
constexpr int kAskTries = 3;

}  // namespace

bool matches(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == '*') {
    for (std::size_t skip = 0; skip <= text.size(); ++skip)
      if (matches(text.substr(skip), pattern.substr(1))) return true;
    return false;
  }
  if (text.empty() || (pattern.front() != '?' && pattern.front() != text.front())) return false;
  return matches(text.substr(1), pattern.substr(1));
}

Unit::Unit(UnitSurroundings surroundings, std::string id) : around_(surroundings) {
  record_.unit = std::move(id);
  record_.port = around_.port.name();
  record_.started = iso_time(std::chrono::system_clock::now());
  record_.rehearsed = around_.rehearsed.has_value();
  began_ = scheduler().now();
}

milliseconds Unit::time_in_step() const {
  return around_.port.link().scheduler().now() - step_began_;
}

void Unit::stop() {
  stopped_ = true;
  around_.host.stop();
  if (transfer_) {
    transfer_->cancel();
  } else {
    link().cancel_running_job();
  }
}

void Unit::check_stop() const {
  if (stopped_) throw StepFailed{"Interrupted"};
}

void Unit::give_up(const std::string& why) {
  if (!record_.verdict.empty()) return;
  if (!record_.steps.empty() && !step_record().passed) step_record().time = time_in_step();
  record_.verdict = stopped_ ? "stopped" : "fail";
  record_.why = why;
  record_.time = scheduler().now() - began_;
}

void Unit::take_console(const std::string& text) {
  said_ += latin1_to_utf8(text);
  signs_ += text.size();
}

Task<> Unit::run() {
  step_began_ = scheduler().now();
  co_await greet();
  std::string why;
  for (current_ = 0; current_ < around_.recipe.steps.size() && why.empty(); ++current_) {
    const Step& step = around_.recipe.steps[current_];
    record_.steps.push_back({step.name});
    step_began_ = scheduler().now();
    percent_.reset();
    if (around_.step_began) around_.step_began();
    try {
      check_stop();
      co_await run_step(step);
      step_record().passed = true;
    } catch (const StepFailed& failed) {
      why = failed.why;
    }
    step_record().time = time_in_step();
  }
  record_.time = scheduler().now() - began_;
  record_.why = why;
  record_.verdict = why.empty() ? "pass" : stopped_ ? "stopped" : "fail";
}

Task<> Unit::run_step(const Step& step) {
  around_.host.forget_failure();
  around_.port.prepare(step);
  co_await pause(step.wait_before);
  co_await std::visit([this](const auto& work) { return do_step(work); }, step.work);
}

Task<> Unit::pause(milliseconds time) {
  const milliseconds end = scheduler().now() + time;
  while (scheduler().now() < end) {
    check_stop();
    co_await Delay(scheduler(), std::min(kLongestDelay, end - scheduler().now()));
  }
  check_stop();
}

Task<> Unit::greet() {
  co_await wait_for_quiet(kGreeting, kLongestGreeting);
  if (const std::optional<std::string> block = link().reply().take_block()) take_greeting(*block);
}

/// A slow chip's comes later than one waits for that does not need it.
Task<> Unit::hear_greeting() {
  const milliseconds start = scheduler().now();
  while (!greeting_ && scheduler().now() - start < around_.timeout) {
    check_stop();
    co_await Delay(scheduler(), kLookForSigns);
    if (const std::optional<std::string> block = link().reply().take_block()) take_greeting(*block);
  }
}

void Unit::take_greeting(const std::string& block) {
  std::optional<Greeting> greeting = greeting_of(block);
  if (!greeting) return;
  greeting_ = std::move(greeting);
  record_.serial = greeting_->serial_number;
}

Task<bool> Unit::wait_for_quiet(milliseconds quiet, milliseconds longest) {
  return qv5123::wait_for_quiet(
      scheduler(), [this] { return signs_ + link().reply().index(); }, quiet, longest);
}

Task<std::string> Unit::ask(Batch request, std::string what) {
  for (int tries = 1;; ++tries) {
    check_stop();
    std::optional<std::string> reply = co_await link().request(request, around_.timeout);
    // A slow chip's greeting comes where the first answer is looked for, which comes behind it.
    if (reply && !greeting_ && reply->size() == kGreetingDigits) {
      take_greeting(*reply);
      reply = co_await link().next_block(around_.timeout);
    }
    if (reply && whole_bytes(*reply) && reply->size() >= 2) co_return *reply;
    if (tries == kAskTries)
      throw StepFailed{what + (reply ? ": the answer was damaged on the line" : ": the chip did not answer")};
    ++step_record().retries;
  }
}

Task<> Unit::send(Batch batch) {
  const JobResult result = co_await link().send(std::move(batch));
  if (result.failed || result.chunks_sent == 0) throw StepFailed{around_.port.name() + " took no more"};
}

Task<int> Unit::read_register(const ExpectedRegister& reg) {
  const std::string reply = co_await ask(isp_read_request(reg.address), reg.name);
  co_return reply_byte_at(reply, reply.size() - 2);
}

Task<> Unit::read_page(TuningModel& page) {
  const std::string name = page.texts().name;
  for (int tries = 1;; ++tries) {
    const Batch request(1, RegisterWrite{page.texts().trigger, 0});
    const std::string reply = co_await ask(request, name);
    if (page.take_reply(reply)) co_return;
    if (tries == kAskTries) throw StepFailed{name + ": the answer is too short"};
    ++step_record().retries;
  }
}

Task<bool> Unit::hear(const std::string& text, milliseconds longest) {
  const milliseconds start = scheduler().now();
  while (said_.find(text) == std::string::npos && scheduler().now() - start < longest) {
    check_stop();
    co_await Delay(scheduler(), kLookForSigns);
  }
  co_return said_.find(text) != std::string::npos;
}

milliseconds Unit::line_time(std::size_t bytes) const {
  constexpr std::size_t kBitsOfByte = 10;
  const std::uint32_t rate = around_.port.baud_rate();
  return milliseconds(rate == 0 ? 0 : bytes * kBitsOfByte * 1000 / rate);
}

}  // namespace qv5123
