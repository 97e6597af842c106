#pragma once

#include <QPointer>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/ui/way_back_tool.h"
#include "base/background.h"
#include "console/prompts.h"
#include "state/ui/history_dock.h"
#include "state/write_history.h"

namespace qv5123 {

class CMainFrame;

/// The journal of writes in the window: notes what leaves, keeps it on the disk, and shows it in a dock that
/// the menu Tools opens.
class HistoryTool {
 public:
  struct Surroundings {
    CQV5123View& view;
    Prompts& prompts;
    Background& files;
    /// A line for the status bar, and whether it is of a failure.
    std::function<void(bool failure, const std::string& text)> say;
    /// Where the journals of the runs are; empty: nowhere.
    std::filesystem::path folder;
  };

  /// All of it must outlive the tool, which takes its dock along.
  HistoryTool(CMainFrame& frame, Surroundings surroundings);
  HistoryTool(const HistoryTool&) = delete;
  HistoryTool& operator=(const HistoryTool&) = delete;
  ~HistoryTool();

  const WriteHistory& history() const { return history_; }
  /// Ends when all that was noted is on the disk.
  Task<> finish();

 private:
  void listen();
  void add_dock(CMainFrame& frame);

  const Surroundings surroundings_;
  WriteHistory history_;
  std::optional<WriteJournalFiles> files_;
  WayBackTool way_back_;
  QPointer<HistoryDock> dock_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace qv5123
