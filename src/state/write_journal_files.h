#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/background.h"
#include "base/scheduler.h"
#include "state/write_journal.h"

namespace qv5123 {

/// The journals of writes of this and earlier runs, a file or some for each in one folder. All functions of
/// the disk run in the background.
class WriteJournalFiles {
 public:
  static constexpr std::size_t kMostRuns = 20;
  static constexpr std::uintmax_t kMostBytes = std::uintmax_t{20} << 20;
  /// A run that has written more goes on in another file, so that the oldest can go.
  static constexpr std::uintmax_t kMostOfOne = std::uintmax_t{4} << 20;
  /// How long lines are gathered before they are written.
  static constexpr std::chrono::seconds kGather{1};

  struct Run {
    std::filesystem::path file;  ///< the first that is still there
    std::string start;           ///< UTC, "2026-11-22 02:51:01"
    std::uintmax_t bytes = 0;    ///< of all its files
  };
  struct Surroundings {
    std::filesystem::path folder;  ///< made when it is needed
    std::function<std::chrono::system_clock::time_point()> now;
    /// Told once that writes are not kept, and why.
    std::function<void(const std::string&)> show_failure;
  };

  WriteJournalFiles(Scheduler& scheduler, Background& background, Surroundings surroundings);
  WriteJournalFiles(const WriteJournalFiles&) = delete;
  WriteJournalFiles& operator=(const WriteJournalFiles&) = delete;
  ~WriteJournalFiles() { *alive_ = false; }

  /// Adds a line to this run's file, soon.
  void add(std::string_view line);
  /// Begins to write what was gathered, at once.
  void flush();

  /// The other runs' journals, the latest first.
  Task<std::vector<Run>> others();
  /// What a journal's file holds, as far as it goes.
  Task<OpenedJournal> open(std::filesystem::path file);

 private:
  Task<> write(std::string lines);
  std::filesystem::path next_file();

  Scheduler& scheduler_;
  Background& background_;
  const Surroundings surroundings_;
  std::string run_;  ///< what its files' names begin with
  int parts_ = 0;    ///< files
  std::filesystem::path own_;
  std::string gathered_;
  std::uintmax_t written_ = 0;  ///< to the own file
  bool timer_runs_ = false;
  bool told_ = false;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  FlowSet flows_;
};

/// Reads a run's journal from this file on, behind which others may go on; a journal that is longer than
/// `limit` bytes is cut there. A foreign file is read alone.
OpenedJournal open_journal_file(const std::filesystem::path& path,
                                std::uintmax_t limit = WriteJournalFiles::kMostBytes);
/// The journals in `folder`, the latest first.
std::vector<WriteJournalFiles::Run> journal_runs(const std::filesystem::path& folder);
/// Removes the oldest journals' files until `runs` and `bytes` are kept.
void remove_old_journals(const std::filesystem::path& folder, std::size_t runs, std::uintmax_t bytes);

}  // namespace qv5123
