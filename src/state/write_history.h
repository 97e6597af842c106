#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "state/write_journal.h"
#include "state/write_journal_files.h"

namespace qv5123 {

/// This run's journal of writes: in memory, and in its file where there is one.
class WriteHistory {
 public:
  using Clock = std::function<std::chrono::system_clock::time_point()>;

  explicit WriteHistory(Clock clock = std::chrono::system_clock::now) : clock_(std::move(clock)) {}

  /// Keeps what is noted from now on; `files` must outlive it.
  void keep_in(WriteJournalFiles& files) { files_ = &files; }
  /// Null where nothing is kept.
  WriteJournalFiles* files() const { return files_; }

  /// Notes what left. A job of which nothing left is none.
  void note(const WriteEvent& event);
  /// Notes that the port was opened, closed or lost: what the chip holds is not known any more.
  void note_connection();
  const WriteJournal& journal() const { return journal_; }
  /// Called after each note. May be empty.
  void tell_of_notes(std::function<void()> told) { told_ = std::move(told); }

 private:
  void add(const WriteRecord& record);

  const Clock clock_;
  WriteJournal journal_;
  WriteJournalFiles* files_ = nullptr;
  std::function<void()> told_;
};

}  // namespace qv5123
