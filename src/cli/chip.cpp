#include "cli/chip.h"

#include <algorithm>
#include <utility>

#include "base/atomic_file.h"
#include "link/late_answers.h"
#include "link/quiet.h"
#include "link/reply_text.h"
#include "link/serial_device.h"
#include "simulator/simulated_board.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

/// How long what is told last may take to leave. Less than what the program's end may take.
constexpr milliseconds kLeavePatience{1500};
static_assert(kLeavePatience < Interrupts::kEndedWithin);
/// Of other programs that had the port a moment ago, and this one's.
constexpr int kMostGreetings = 8;

std::string port_name(const GlobalOptions& globals) {
  return globals.simulate ? "the simulated chip" : globals.port;
}

Traffic one_flush(Batch batch) {
  Traffic traffic;
  traffic.push_back(std::move(batch));
  return traffic;
}

}  // namespace

Chip::Chip(Context& context)
    : context_(context),
      interrupts_([this] { scheduler_.post([this] { take_interrupt(); }); },
                  {"qv5123ctl: Interrupted\n", static_cast<int>(ExitCode::negative)}) {
  if (context.globals.port.empty() && !context.globals.simulate) {
    refuse("This command talks to the chip: --port DEVICE or --simulate says where it is");
  }
  if (context.globals.ports.size() > 1) refuse("This command takes one --port");
  if (!context.globals.trace.empty()) begin_trace();
  session_ = std::make_unique<PortSession>(scheduler_, make_device(), session_events());
}

Chip::~Chip() = default;

void Chip::begin_trace() {
  trace_ = std::make_shared<Trace>(context_.globals.trace);
  if (!trace_->ok()) refuse("Cannot write " + path_text(context_.globals.trace));
}

std::unique_ptr<SerialDevice> Chip::make_device() {
  std::unique_ptr<SerialDevice> device =
      context_.globals.simulate ? std::make_unique<SimulatedBoard>() : make_serial_device();
  return trace_ ? traced(std::move(device), trace_) : std::move(device);
}

PortSessionEvents Chip::session_events() {
  PortSessionEvents events;
  events.console = [this](const std::string& text) {
    console_received_ += text.size();
    if (take_console_) take_console_(text);
  };
  events.connected = [this](bool connected) { gone_ = gone_ || !connected; };
  events.standstill = [this](bool stands) {
    out().warning(standstill_text(session_->name(), stands) + (stands ? " Ctrl-C ends the command." : ""));
  };
  events.trouble = [this](const std::string& text) { out().warning(text); };
  return events;
}

void Chip::take_interrupt() {
  interrupts_.heard();
  ++interrupts_seen_;
  stopped_ = interrupts_seen_ > interrupts_taken_ || !on_interrupt_;
  if (!stopped_) on_interrupt_();
}

ExitCode Chip::run(Begin begin, const Work& work) {
  Flow flow(main(begin, work));
  scheduler_.run_until([&] {
    return !flow.running() || (gone_ && !notices_loss_) || stopped_ || (only_prints_ && !out().ok());
  });
  if (interrupted()) interrupts_.ending();
  const bool ended = !flow.running();
  flow.cancel();
  if (interrupted()) leave();
  if (failure_) std::rethrow_exception(failure_);
  if (gone_ && !ended) throw Complaint{ExitCode::port_failed, session_->name() + " is gone"};
  if (stopped_) throw Complaint{ExitCode::negative, "Interrupted"};
  if (trace_ && !trace_->ok()) refuse("Cannot write " + path_text(context_.globals.trace));
  return result_;
}

/// What is being sent ends at its next flush, and the chip is not left with a bracket open. One more request
/// ends that, too.
void Chip::leave() {
  const int interrupts = interrupts_seen_;
  bool over = false;
  const auto end = [this, &over]() -> Task<> {
    co_await link().end_with({});
    over = true;
  };
  const Flow leaving(end());
  const Scheduler::TimerId timer = scheduler_.call_after(kLeavePatience, [&over] { over = true; });
  scheduler_.run_until([&] { return over || interrupts_seen_ > interrupts; });
  scheduler_.cancel(timer);
}

Task<> Chip::main(Begin begin, const Work& work) {
  try {
    const std::string name = port_name(context_.globals);
    const OpenResult opened = co_await session_->open(name, context_.globals.line);
    if (!opened.ok()) throw Complaint{ExitCode::port_failed, opened.text};
    const Signs before = signs();
    if (begin == Begin::after_greeting) co_await wait_for_quiet(kGreeting, kLongestGreeting);
    greeted_ = signs() != before;
    result_ = co_await work(*this);
  } catch (...) {
    failure_ = std::current_exception();
  }
}

Chip::Signs Chip::signs() {
  return {console_received_, link().reply().index(), link().reply().state()};
}

// A slow chip's greeting comes where the first answer is looked for, and so may one from the time when
// another program had the port. Each is a block with text before it; the answer comes behind them.
Task<std::string> Chip::behind_greeting(std::string reply, bool greeting, milliseconds took) {
  for (int greetings = 0; greetings < kMostGreetings; ++greetings) {
    const std::size_t said = console_received_;
    const milliseconds wait = greeting ? timeout() : took + kGreeting;
    std::optional<std::string> next = co_await link().next_block(wait);
    if (!next) break;
    reply = std::move(*next);
    greeting = said != console_received_;
  }
  co_return std::move(reply);
}

Task<std::string> Chip::ask(Batch request, std::string what) {
  const milliseconds asked = scheduler_.now();
  const std::size_t said = console_received_;
  std::optional<std::string> reply = co_await link().request(request, timeout());
  if (!reply) throw Complaint{ExitCode::negative, what + ": the chip did not answer"};
  const bool greeting = said != console_received_;
  const bool doubtful = first_ask_ && (greeting || !greeted_);
  first_ask_ = false;
  if (doubtful) reply = co_await behind_greeting(std::move(*reply), greeting, scheduler_.now() - asked);
  if (!whole_bytes(*reply))
    throw Complaint{ExitCode::negative, what + ": the answer was damaged on the line"};
  if (const std::size_t surplus = surplus_digits(request, reply->size())) {
    out().warning(what + ": the last " + std::to_string(surplus) + " of the answer's " +
                  std::to_string(reply->size()) + " digits are not known and left out");
  }
  co_return std::move(*reply);
}

Task<> Chip::send(Traffic traffic) {
  const std::size_t flushes = traffic.size();
  const JobResult result = co_await link().send(std::move(traffic));
  if (result.failed || result.chunks_sent < flushes)
    throw Complaint{ExitCode::port_failed, session_->name() + " took no more"};
}

Task<bool> Chip::send_and_listen(Batch batch) {
  const milliseconds end = scheduler_.now() + timeout();
  const bool heard = co_await send_and_hear(std::move(batch));
  if (!heard) co_return false;
  // A chip that chats without end has said enough by then.
  co_await wait_for_quiet(kQuiet, std::max(kQuiet, end - scheduler_.now()));
  co_return true;
}

Task<bool> Chip::send_and_hear(Batch batch) {
  link().reply().forget();
  const Signs before = signs();
  co_await send(one_flush(std::move(batch)));
  const milliseconds sent = scheduler_.now();
  while (signs() == before && scheduler_.now() - sent < timeout()) co_await Delay(scheduler_, kLookForSigns);
  co_return signs() != before;
}

Task<bool> Chip::wait_for_quiet(milliseconds quiet, milliseconds longest) {
  return qv5123::wait_for_quiet(
      scheduler_, [this] { return signs(); }, quiet, longest);
}

ExitCode run_on_chip(Context& context, const Chip::Work& work, Chip::Begin begin) {
  return Chip(context).run(begin, work);
}

UnattendedHost::Progress progress_of(Chip& chip) {
  return [&chip](std::optional<int> percent) {
    chip.out().progress(percent ? std::to_string(*percent) + " %" : "");
  };
}

UnattendedHost host_on(Chip& chip) {
  return {chip.link(), progress_of(chip), [&chip](const std::string& text) { chip.out().warning(text); }};
}

}  // namespace qv5123
