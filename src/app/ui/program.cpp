#include "app/ui/program.h"

#include <QAction>
#include <utility>

#include "app/ui/frame.h"
#include "app/ui/help_window.h"
#include "app/ui/history_tool.h"
#include "app/ui/page_area.h"
#include "app/ui/port_state.h"
#include "app/ui/qv5123_view.h"
#include "app/ui/report_tool.h"
#include "app/ui/unattended_prompts.h"
#include "app/ui/window_actions.h"
#include "app/ui/window_memory.h"
#include "base/lock_file.h"
#include "base/ui/qt_text.h"
#include "content/font_editor.h"

namespace qv5123 {
namespace {

constexpr const char* kAboutHistory = "history";

std::unique_ptr<Prompts> make_prompts(bool attended, const std::function<void(const std::string&)>& report) {
  if (attended) return std::make_unique<QtPrompts>();
  return std::make_unique<UnattendedPrompts>(report);
}

void bring_to_front(QWidget& window) {
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.raise();
  window.activateWindow();
}

}  // namespace

Program::Program(ProgramOptions options, AppSettings settings, Parts parts)
    : options_(std::move(options)),
      settings_(settings),
      parts_(std::move(parts)),
      prompts_(make_prompts(!options_.tour, parts_.report)),
      session_(scheduler_, std::move(parts_.device), session_events()) {
  document_.fourth_tdn_mode = settings_.fourth_tdn_mode();
}

Program::~Program() {
  trouble_.cancel();
  flows_.cancel();
  journal_.reset();
  report_.reset();
  history_.reset();
  memory_.reset();
  // Its flows own dialogs that the frame would delete as well.
  delete view_;
}

PortSessionEvents Program::session_events() {
  PortSessionEvents events;
  events.console = [this](const std::string& text) {
    if (view_) view_->take_received(text);
  };
  events.status = [this](const std::string& text) {
    if (!view_) return;
    view_->say(session_.connected() ? StatusRank::outcome : StatusRank::failure, kAboutPort, text);
  };
  events.standstill = [this](bool stands) {
    if (!view_) return;
    view_->set_line_stands(stands);
    const char* remedy = stands ? " \"Cancel\" ends a download, \"Close serial port\" everything." : "";
    view_->say(stands ? StatusRank::failure : StatusRank::outcome, kAboutPort,
               standstill_text(session_.name(), stands) + remedy);
  };
  events.trouble = [this](const std::string& text) {
    // A flood says the same again and again; once it is read it may say it once more.
    if (trouble_.running()) return;
    Message message;
    message.text = text;
    message.icon = Message::Icon::warning;
    trouble_.start(prompts_->message(std::move(message)));
  };
  events.connected = [this](bool connected) {
    if (frame_) frame_->show_connected(connected);
    if (view_) view_->set_line_stands(false);
    if (connected) flows_.spawn(look_at_adapter());
    if (connected && view_ && view_->port()) view_->port()->connected();
  };
  return events;
}

void Program::start() {
  flows_.spawn(run());
}

Task<> Program::run() {
  PortSettings port = co_await initial_port();
  open_window(std::move(port));
  CQV5123View::Startup startup;
  startup.setting_file = options_.setting_file;
  startup.offer_setting_file = !options_.tour;
  startup.page = memory_->last_page();
  if (journal_) startup.restore = [this] { return journal_->start(*prompts_); };
  view_->start(std::move(startup));
  if (options_.tour) co_await make_tour();
}

// Begun at once, whether anybody waits for it or not.
Task<bool> Program::store(std::function<void(AppSettings&)> change) {
  std::function<bool()> work = [] { return true; };
  if (!parts_.fixed_port) work = settings_.changing(std::move(change));
  return files_.run<bool>(std::move(work));
}

Task<bool> Program::store_port(PortSettings settings) {
  return store([settings = std::move(settings)](AppSettings& stored) { stored.store_port(settings); });
}

QVariantMap Program::chosen_folders() const {
  QVariantMap folders;
  if (const auto* dialogs = dynamic_cast<const QtPrompts*>(prompts_.get()))
    for (const auto& [kind, folder] : dialogs->folders()) folders[to_qt(kind)] = folder;
  return folders;
}

void Program::use_dialogs() {
  auto* dialogs = dynamic_cast<QtPrompts*>(prompts_.get());
  if (!dialogs) return;
  dialogs->set_parent(frame_.get());
  dialogs->look_in(folders_, scheduler_);
  QtPrompts::Folders folders;
  for (const auto& [kind, folder] : settings_.window_look().folders.asKeyValueRange())
    folders[from_qt(kind)] = folder.toString();
  dialogs->set_folders(std::move(folders));
}

Task<bool> Program::store_window_look() {
  std::function<bool()> work = [] { return true; };
  // Of a tour nobody arranged the window.
  if (memory_ && !options_.tour) {
    WindowLook look = memory_->look();
    look.folders = chosen_folders();
    work = settings_.changing([look](AppSettings& stored) { stored.store_window_look(look); });
  }
  return files_.run<bool>(std::move(work));
}

void Program::open_window(PortSettings port) {
  view_ = new CQV5123View(session_.link(), *prompts_, files_, document_, std::move(parts_.pages));
  view_->values().verify_saves(settings_.verify_saves());
  frame_ = std::make_unique<CMainFrame>(view_);
  use_dialogs();
  PortInUse::Surroundings surroundings;
  surroundings.open = [this](std::string name, LineSettings line) {
    return session_.open(std::move(name), line);
  };
  surroundings.close = [this] { session_.close(); };
  surroundings.choose = [this](PortSettings current) { return choose_port(std::move(current), {}); };
  surroundings.open_when_there = [this] { session_.open_when_there(); };
  surroundings.store = [this](const PortSettings& settings) { (void)store_port(settings); };
  view_->use_port(std::move(port), std::move(surroundings));
  view_->set_recent_files(settings_.recent_files());
  QObject::connect(view_, &CQV5123View::recent_files_changed, frame_.get(), [this] {
    (void)store([recent = view_->recent_files()](AppSettings& stored) { stored.store_recent_files(recent); });
  });
  QObject::connect(view_, &CQV5123View::closing_confirmed, frame_.get(), [this] { flows_.spawn(end(0)); });
  QObject::connect(frame_.get(), &CMainFrame::verify_saves_switched, frame_.get(), [this](bool on) {
    (void)store([on](AppSettings& stored) { stored.store_verify_saves(on); });
  });
  QObject::connect(frame_.get(), &CMainFrame::help_wanted, frame_.get(), [this] { show_help(); });
  frame_->port_state().use_report([this] {
    return LinkReport{session_.name(), session_.connected(), session_.health(), latency_timer_};
  });
  keep_history();
  QObject::connect(frame_.get(), &CMainFrame::topic_wanted, frame_.get(),
                   [this](const QString& topic) { show_help_of(topic); });
  if (parts_.furnish) parts_.furnish(*frame_, scheduler_);
  memory_ =
      std::make_unique<WindowMemory>(*frame_, *view_, options_.tour ? WindowLook{} : settings_.window_look());
  memory_->restore();
  if (!parts_.journal_folder.empty()) keep_journal();
  frame_->show();
}

void Program::keep_history() {
  const auto say = [this](bool failure, const std::string& text) {
    view_->say(failure ? StatusRank::failure : StatusRank::outcome, kAboutHistory, text);
  };
  history_ = std::make_unique<HistoryTool>(
      *frame_, HistoryTool::Surroundings{*view_, *prompts_, files_, say, parts_.journal_folder});
  report_ = std::make_unique<ReportTool>(
      ReportTool::Surroundings{*frame_, *view_, *prompts_, files_, history_->history(),
                               [this] { return session_.name(); }, [this] { return session_.greeting(); }});
}

void Program::keep_journal() {
  Journal::Surroundings surroundings;
  surroundings.folder = parts_.journal_folder;
  surroundings.lock = [](const std::filesystem::path& path) { return lock_file(path).held; };
  surroundings.unsaved = [this] { return view_->unsaved(); };
  surroundings.restore = [this](const JournalEntry& entry, bool file_is_newer) {
    view_->restore(entry, file_is_newer);
  };
  surroundings.font_file = font_file_of;
  surroundings.show_status = [this](const std::string& text) {
    view_->say(StatusRank::failure, kAboutJournal, text);
  };
  surroundings.show_done = [this](const std::string& text) {
    view_->say(StatusRank::outcome, kAboutJournal, text);
  };
  journal_ = std::make_unique<Journal>(scheduler_, files_, std::move(surroundings));
  QObject::connect(view_, &CQV5123View::image_saved, frame_.get(),
                   [this](const UserDataImage& image) { journal_->saved(image); });
  QObject::connect(view_, &CQV5123View::font_saved, frame_.get(), [this] { journal_->look_again(); });
}

HelpWindow& Program::help() {
  if (!help_) {
    help_ = std::make_unique<HelpWindow>();
    help_->tell_keys([this] { return shortcuts_markdown(*frame_); });
    QObject::connect(help_.get(), &HelpWindow::command_chosen, frame_.get(), [this](const QString& name) {
      // Also for a page that is shown already, and so is not chosen again.
      bring_to_front(*frame_);
      if (auto* action = frame_->findChild<QAction*>(name)) action->trigger();
    });
  }
  return *help_;
}

void Program::show_help() {
  const std::optional<PageId> page = view_->pages().current();
  show_help_of(page ? QLatin1String(kPageEntries[static_cast<std::size_t>(*page)].name) : QString());
}

void Program::show_help_of(const QString& topic) {
  help().show_topic(topic);
  help().show();
  help().raise();
  help().activateWindow();
}

}  // namespace qv5123
