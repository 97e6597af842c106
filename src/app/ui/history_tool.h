#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "base/background.h"
#include "console/prompts.h"
#include "state/write_history.h"

namespace qv5123 {

class CMainFrame;
class CommandLink;
class HistoryDock;

/// The journal of writes in the window: notes what leaves, keeps it on the disk, and shows it in a dock that
/// the menu Tools opens.
class HistoryTool {
 public:
  struct Surroundings {
    CommandLink& link;
    Prompts& prompts;
    Background& files;
    /// A line for the status bar, and whether it is of a failure.
    std::function<void(bool failure, const std::string& text)> say;
    /// Where the journals of the runs are; empty: nowhere.
    std::filesystem::path folder;
  };

  /// All of it must outlive the tool; the frame owns the dock.
  HistoryTool(CMainFrame& frame, Surroundings surroundings);

  const WriteHistory& history() const { return history_; }
  /// Ends when all that was noted is on the disk.
  Task<> finish();

 private:
  void note(const struct SentJob& job);
  void add_dock(CMainFrame& frame);

  const Surroundings surroundings_;
  WriteHistory history_;
  std::optional<WriteJournalFiles> files_;
};

}  // namespace qv5123
