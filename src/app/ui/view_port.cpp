// The main form's port, and its end.
#include <utility>

#include "app/ui/control_column.h"
#include "app/ui/left_chip.h"
#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/ui/qt_text.h"
#include "tuning/brackets.h"

namespace qv5123 {
namespace {

/// How long closing waits for the end of a download that is under way. At 19200 baud the chip takes some 30
/// blocks in this time; with more of them still to fill up it is left waiting.
constexpr std::chrono::seconds kTransferPatience{5};
/// The same for what the chip must be told before its port is closed.
constexpr std::chrono::milliseconds kLeavePatience{1500};
/// The same for both where the line takes nothing.
constexpr std::chrono::milliseconds kStillLinePatience{500};

constexpr const char* kNotLeft =
    "The last commands did not reach the chip: it may still measure, or keep what it is told.";

constexpr const char* kCloseQuestion =
    "Close the serial port?\n\n\"Change COM Port...\" opens it again. Until then nothing reaches the chip.";

}  // namespace

void CQV5123View::use_port(PortSettings settings, PortInUse::Surroundings surroundings) {
  surroundings.show = [this](const PortSettings& shown) {
    column_->set_port_description(to_qt(shown.description.empty() ? shown_port(shown) : shown.description));
  };
  surroundings.append_console = [this](const std::string& text) { append_console(text); };
  surroundings.say = [this](bool fault, const std::string& text) {
    say(fault ? StatusRank::failure : StatusRank::outcome, kAboutPort, text);
  };
  surroundings.leave_chip = [this]() -> Task<> { co_await leave_chip(kLeavePatience, Leave::for_now); };
  surroundings.empty_write = [this] { link_.send(Batch{}); };
  port_.emplace(std::move(settings), prompts_, std::move(surroundings));
}

void CQV5123View::change_port() {
  // Until its dialog is there the button can be clicked again.
  if (port_ && !port_change_.running()) port_change_.start(run_change_port());
}

void CQV5123View::close_serial() {
  if (port_) flows_.spawn(run_close_serial());
}

void CQV5123View::ask_and_close_serial() {
  if (port_) flows_.spawn(run_ask_and_close_serial());
}

Task<> CQV5123View::run_ask_and_close_serial() {
  const Answer answer = co_await prompts_.ask(careful_question(kCloseQuestion));
  if (answer == Answer::yes) co_await run_close_serial();
}

Task<> CQV5123View::run_change_port() {
  const bool wanted = co_await may_leave_port("Change the port all the same?");
  if (wanted) co_await port_->change();
}

Task<> CQV5123View::run_close_serial() {
  const bool wanted = co_await may_leave_port("Close the port all the same?");
  if (wanted) co_await port_->close();
}

Task<bool> CQV5123View::may_leave_port(std::string question) {
  if (!busy_ && !transfer_.running()) co_return true;
  Question interrupt = careful_question("Something is still being sent to the chip. " + question);
  const Answer answer = co_await prompts_.ask(std::move(interrupt));
  if (answer != Answer::yes) co_return false;
  co_await end_transfers(kTransferPatience);
  co_return true;
}

void CQV5123View::request_exit() {
  if (!exit_.running()) exit_.start(exit_flow());
}

Task<> CQV5123View::exit_flow() {
  if (busy_ || transfer_.running()) {
    Question question =
        careful_question("Something is still being sent to the chip. Close all the same?", "Save setting");
    const Answer answer = co_await prompts_.ask(std::move(question));
    if (answer != Answer::yes) co_return;
  }
  if (!co_await files_.may_exit()) co_return;
  co_await end_transfers(kTransferPatience);
  emit closing_confirmed();
}

Task<> CQV5123View::end_transfers(std::chrono::milliseconds patience) {
  if (transfers_ == 0 && !transfer_.waiting()) co_return;
  // A chip left in the middle of an image takes what the next start sends for the rest of it.
  say(StatusRank::outcome, kAboutDownload, "Ending the download...");
  co_await transfer_.end_all(line_stands_ ? kStillLinePatience : patience);
}

Task<bool> CQV5123View::leave_chip(std::chrono::milliseconds patience, Leave leave) {
  const Resolver<bool> over;
  const Flow last_words(send_last_words(leave, over));
  const Scheduler::TimerId timer =
      scheduler().call_after(line_stands_ ? kStillLinePatience : patience, [over] { over.resolve(false); });
  const bool left = co_await over.pending();
  scheduler().cancel(timer);
  if (!left) say(StatusRank::failure, kAboutForm, kNotLeft);
  co_return left;
}

Task<> CQV5123View::send_last_words(Leave leave, Resolver<bool> over) {
  Traffic last;
  for (const PageEntry& entry : kPageEntries) {
    if (Page* page = pages_->page(entry.id)) append(last, page->leave());
  }
  const bool has_words = !last.empty();
  bool left = !has_words;
  // A chip in the middle of an image would take it for the rest of that.
  if (!transfer_.running() && !transfer_.waiting()) {
    left = leave == Leave::for_good ? co_await link_.end_with(std::move(last))
                                    : co_await interrupt_with(std::move(last));
  }
  // What pages have to say last is that their picker is off.
  if (left && has_words) {
    say(StatusRank::outcome, kAboutForm, kPickerLeftOff);
    append_console(std::string("\r\n") + kPickerLeftOff + "\r\n");
  }
  // Posted, since who waits for it ends this flow.
  scheduler().post([over, left] { over.resolve(left); });
}

Task<bool> CQV5123View::interrupt_with(Traffic last) {
  Traffic traffic = link_.closing_brackets();
  if (busy_ && link_.jobs_waiting() > 0) {
    link_.cancel_running_job();
    // Whatever it still opens.
    traffic = closing_pair();
  }
  append(traffic, std::move(last));
  if (traffic.empty()) co_return true;
  // While the chip stores a page holds all else up for longer than the port stays.
  const JobResult result = co_await link_.send_through_hold(std::move(traffic));
  co_return !result.failed;
}

}  // namespace qv5123
