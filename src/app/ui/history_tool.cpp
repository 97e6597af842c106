#include "app/ui/history_tool.h"

#include <QAction>
#include <QMenu>

#include "app/ui/frame.h"
#include "app/ui/qv5123_view.h"

namespace qv5123 {

HistoryTool::HistoryTool(CMainFrame& frame, Surroundings surroundings)
    : surroundings_(std::move(surroundings)), way_back_(surroundings_.view, surroundings_.prompts) {
  if (!surroundings_.folder.empty()) {
    files_.emplace(surroundings_.view.scheduler(), surroundings_.files,
                   WriteJournalFiles::Surroundings{
                       surroundings_.folder, std::chrono::system_clock::now,
                       [this](const std::string& failure) { surroundings_.say(true, failure); }});
    history_.keep_in(*files_);
  }
  listen();
  add_dock(frame);
}

/// Who tells of it may outlive this.
void HistoryTool::listen() {
  surroundings_.view.values().on_write([this, alive = alive_](const WriteEvent& event) {
    if (*alive) history_.note(event);
  });
  surroundings_.view.link().tell_of_connections([this, alive = alive_] {
    if (*alive) history_.note_connection();
  });
}

// Its flows own dialogs that the frame would delete as well.
HistoryTool::~HistoryTool() {
  *alive_ = false;
  surroundings_.view.use_history(nullptr);
  delete dock_;
}

void HistoryTool::add_dock(CMainFrame& frame) {
  HistoryDock::Surroundings surroundings{
      surroundings_.prompts, surroundings_.files, surroundings_.view.scheduler(), surroundings_.say, {}, {}};
  surroundings.back = [this](KnownValues then, std::size_t unnamed, std::string when) {
    way_back_.start(std::move(then), unnamed, std::move(when));
  };
  surroundings.compare = [this](const KnownValues& then, const std::string& when) {
    surroundings_.view.compare_with(then, when);
  };
  dock_ = new HistoryDock(history_, std::move(surroundings), &frame);
  frame.addDockWidget(Qt::BottomDockWidgetArea, dock_);
  dock_->hide();
  surroundings_.view.use_history(&history_);
  QObject::connect(&surroundings_.view, &CQV5123View::moment_wanted, dock_, [this] {
    dock_->show();
    dock_->raise();
    surroundings_.say(false, "Choose a write in the History, then press \"Compare\" there.");
  });
  QAction* show = dock_->toggleViewAction();
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
