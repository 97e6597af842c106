#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/background.h"
#include "base/interrupts.h"
#include "base/loop_scheduler.h"
#include "cli/context.h"
#include "link/port_session.h"
#include "link/trace_device.h"
#include "provision/unattended.h"

namespace qv5123 {

/// The chip on its line for the time of one command: an event loop, the port, and what commands do alike.
class Chip {
 public:
  using Work = std::function<Task<ExitCode>(Chip&)>;

  /// From the last sign of the chip to when it counts as having finished.
  static constexpr std::chrono::milliseconds kQuiet{200};
  /// A chip announces itself when its line is opened; nothing is asked before it has.
  static constexpr std::chrono::milliseconds kGreeting{150};
  static constexpr std::chrono::milliseconds kLongestGreeting{1500};

  /// How a command begins: after the chip's greeting, or with it.
  enum class Begin { after_greeting, at_once };

  /// Neither port nor simulation asked for, or a trace that cannot be written: a Complaint.
  explicit Chip(Context& context);
  ~Chip();

  /// Opens the port, runs `work` to its end and returns what it says. A port that fails or goes away and a
  /// request to end the program are Complaints. After such a request the brackets that are open on the chip
  /// are closed.
  ExitCode run(Begin begin, const Work& work);

  Context& context() { return context_; }
  Output& out() { return context_.out; }
  CommandLink& link() { return session_->link(); }
  /// What the chip has told of itself by now; a slow one is later than the first answers.
  const std::optional<Greeting>& greeting() const { return session_->greeting(); }
  Background& background() { return background_; }
  std::chrono::milliseconds timeout() const { return context_.globals.timeout; }

  /// Asks and returns the characters of the reply; a Complaint that names `what` when none came
  /// or not in hex digits.
  Task<std::string> ask(Batch request, std::string what);
  /// Sends flush by flush; a Complaint when not all of it left.
  Task<> send(Traffic traffic);
  /// Sends and waits until the chip has said what it has to say, for as long as an answer may take. False
  /// when it said nothing.
  Task<bool> send_and_listen(Batch batch);
  /// Sends and waits for the chip's first sign. False when there was none.
  Task<bool> send_and_hear(Batch batch);
  /// Waits until the line has been quiet for `quiet`, for at most `longest`. False when it has not.
  Task<bool> wait_for_quiet(std::chrono::milliseconds quiet, std::chrono::milliseconds longest);

  /// Gets the console text of the chip, 8-bit characters. Until it is set the text is dropped.
  void on_console(std::function<void(const std::string&)> take) { take_console_ = std::move(take); }
  /// Called at the first `times` requests to end the program, which then goes on; one more ends it.
  void on_interrupt(std::function<void()> callback, int times = 1) {
    on_interrupt_ = std::move(callback);
    interrupts_taken_ = times;
  }
  /// Ends the program as a request that nobody takes does: the work is dropped wherever it is.
  void stop() { stopped_ = true; }
  /// Whether the command comes to its end by itself when the port goes.
  void notice_loss_itself(bool itself) { notices_loss_ = itself; }
  /// The command is there for what it prints alone, and ends when nobody reads that any more. Others go on: a
  /// chip is not left in the middle of something because of its report.
  void only_print() { only_prints_ = true; }
  bool interrupted() const { return interrupts_seen_ > 0; }

 private:
  /// Changes whenever something comes from the chip.
  struct Signs {
    std::size_t console = 0;
    std::size_t reply = 0;
    ReplyBuffer::State state = ReplyBuffer::State::idle;
    bool operator==(const Signs&) const = default;
  };
  Signs signs();
  void begin_trace();
  std::unique_ptr<SerialDevice> make_device();
  PortSessionEvents session_events();
  void take_interrupt();
  Task<> main(Begin begin, const Work& work);
  void leave();
  Task<std::string> behind_greeting(std::string reply, bool greeting, std::chrono::milliseconds took);

  Context& context_;
  LoopScheduler scheduler_;
  Interrupts interrupts_;
  BackgroundThread background_{scheduler_};
  std::shared_ptr<Trace> trace_;
  std::function<void(const std::string&)> take_console_;
  std::function<void()> on_interrupt_;
  int interrupts_seen_ = 0;
  int interrupts_taken_ = 1;
  bool stopped_ = false;
  bool only_prints_ = false;
  bool gone_ = false;
  bool greeted_ = false;
  bool first_ask_ = true;
  bool notices_loss_ = false;
  std::size_t console_received_ = 0;
  ExitCode result_ = ExitCode::done;
  std::exception_ptr failure_;
  std::unique_ptr<PortSession> session_;
};

/// Runs `work` on the chip that the options name.
ExitCode run_on_chip(Context& context, const Chip::Work& work,
                     Chip::Begin begin = Chip::Begin::after_greeting);

/// Shows how far a desk on the chip is.
UnattendedHost::Progress progress_of(Chip& chip);
/// Runs a desk on the chip; what it has for the console is a warning. Commands say by themselves what came of
/// them.
UnattendedHost host_on(Chip& chip);

}  // namespace qv5123
