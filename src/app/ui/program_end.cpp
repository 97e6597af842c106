// The program's end: what must be whole, and told to the chip, before the process goes.
#include <utility>

#include "app/ui/history_tool.h"
#include "app/ui/left_chip.h"
#include "app/ui/program.h"
#include "app/ui/qv5123_view.h"
#include "base/delay.h"

namespace qv5123 {
namespace {

/// A disk that takes longer at the end is told of.
constexpr std::chrono::seconds kSlowDisk{2};
constexpr std::chrono::seconds kAskAgain{10};

Task<> resolved_after(Task<> task, Scheduler& scheduler, Resolver<bool> over) {
  co_await std::move(task);
  // Posted, since who waits for it ends this flow.
  scheduler.post([over] { over.resolve(true); });
}

}  // namespace

/// How long the end of the program waits for a download to end as the chip can take, where nobody was asked:
/// 1 s of 2.8 s.
std::chrono::milliseconds Program::transfer_patience() const {
  return parts_.end_patience * 10 / 28;
}

/// And for what the chip must be told last: 1.5 s of 2.8 s.
std::chrono::milliseconds Program::chip_patience() const {
  return parts_.end_patience * 15 / 28;
}

Task<> Program::end(int exit_code) {
  ending_ = true;
  (void)store_window_look();
  const bool left = co_await view_->leave_chip(chip_patience(), CQV5123View::Leave::for_good);
  // Nobody sees the window any more.
  if (!left) parts_.report(view_->board().failures().back().text);
  if (view_->board().latest() == kPickerLeftOff) parts_.report(kPickerLeftOff);
  co_await session_.close();
  if (!view_->gave_up_writing()) co_await finish_files();
  parts_.end_process(exit_code);
}

// Nothing is torn down, so what is being written must be whole before, or the user does without.
Task<> Program::finish_files() {
  const Resolver<bool> over;
  const Flow writing(write_out(over));
  const Flow asking(offer_to_go(over));
  co_await over.pending();
}

Task<> Program::write_out(Resolver<bool> over) {
  if (journal_) co_await journal_->end();
  // Behind all that was begun before.
  co_await history_->finish();
  // Posted, since who waits for it ends this flow.
  scheduler_.post([over] { over.resolve(true); });
}

Task<> Program::offer_to_go(Resolver<bool> over) {
  for (std::chrono::seconds patience = kSlowDisk;; patience = kAskAgain) {
    co_await Delay(scheduler_, patience);
    view_->say(StatusRank::outcome, kAboutFiles, "Still writing ...");
    Question question = careful_question("Files are still being written.\n\nClose without waiting for them?");
    const Answer answer = co_await prompts_->ask(std::move(question));
    if (answer != Answer::yes) continue;
    scheduler_.post([over] { over.resolve(true); });
    co_return;
  }
}

void Program::end_unasked() {
  scheduler_.post([this] {
    if (!std::exchange(ending_, true)) flows_.spawn(run_unasked_end());
  });
}

Task<> Program::run_unasked_end() {
  scheduler_.call_after(parts_.end_patience, [this] { parts_.end_process(0); });
  Task<bool> looks = store_window_look();
  Flow keeping;
  Resolver<bool> kept;
  if (journal_) {
    keeping.start(resolved_after(journal_->keep_to_the_end(), scheduler_, kept));
  } else {
    kept.resolve(true);
  }
  if (view_) {
    co_await view_->end_transfers(transfer_patience());
    co_await view_->leave_chip(chip_patience(), CQV5123View::Leave::for_good);
    if (view_->board().latest() == kPickerLeftOff) parts_.report(kPickerLeftOff);
    for (const StatusMessage& failure : view_->board().failures()) parts_.report(failure.text);
  }
  co_await session_.close();
  if (history_) co_await history_->finish();
  co_await kept.pending();
  co_await std::move(looks);
  parts_.end_process(0);
}

}  // namespace qv5123
