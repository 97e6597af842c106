#include "app/ui/history_tool.h"

#include <QAction>
#include <QMenu>

#include "app/ui/frame.h"
#include "link/command_link.h"
#include "state/ui/history_dock.h"

namespace qv5123 {

HistoryTool::HistoryTool(CMainFrame& frame, Surroundings surroundings)
    : surroundings_(std::move(surroundings)) {
  if (!surroundings_.folder.empty()) {
    files_.emplace(surroundings_.link.scheduler(), surroundings_.files,
                   WriteJournalFiles::Surroundings{
                       surroundings_.folder, std::chrono::system_clock::now,
                       [this](const std::string& failure) { surroundings_.say(true, failure); }});
    history_.keep_in(*files_);
  }
  surroundings_.link.tell_of_jobs([this](const SentJob& job) { note(job); });
  add_dock(frame);
}

void HistoryTool::note(const SentJob& job) {
  WriteEvent event;
  if (job.note) event.page = job.note->page;
  if (job.note) event.control = job.note->control;
  event.batches = job.writes;
  event.result = job.result;
  history_.note(event);
}

void HistoryTool::add_dock(CMainFrame& frame) {
  auto* dock =
      new HistoryDock(history_, {surroundings_.prompts, surroundings_.files, surroundings_.say}, &frame);
  frame.addDockWidget(Qt::BottomDockWidgetArea, dock);
  dock->hide();
  QAction* show = dock->toggleViewAction();
  show->setText("&History");
  show->setShortcut(QKeySequence("Ctrl+H"));
  frame.tools().addAction(show);
}

Task<> HistoryTool::finish() {
  if (files_) files_->flush();
  const std::function<bool()> all_before = [] { return true; };
  co_await surroundings_.files.run<bool>(all_before);
}

}  // namespace qv5123
