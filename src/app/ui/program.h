#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/ui/app_settings.h"
#include "app/ui/pages.h"
#include "app/ui/program_options.h"
#include "base/background.h"
#include "base/ui/qt_scheduler.h"
#include "console/document.h"
#include "console/journal.h"
#include "console/ui/qt_prompts.h"
#include "link/port_list.h"
#include "link/port_session.h"

class QDialog;

namespace qv5123 {

class CMainFrame;
class CQV5123View;
class HelpWindow;
class HistoryTool;
class ReportTool;
class WindowMemory;

/// The window with everything behind it, from the start of the application to its end.
class Program {
 public:
  /// What differs between the real program and another way to run it.
  struct Parts {
    std::unique_ptr<SerialDevice> device;
    PageFactories pages;
    /// The port to use at once, without trying and without storing anything.
    std::optional<PortSettings> fixed_port;
    std::function<std::vector<PortInfo>()> list_ports;
    std::function<OpenResult(const std::string& device)> probe_port;
    /// Where unsaved values are kept for after a crash; empty: nowhere.
    std::filesystem::path journal_folder;
    /// Adds to the window what only this way to run has, before it is shown. May be empty.
    std::function<void(CMainFrame&, Scheduler&)> furnish;
    /// Lets the simulated camera look at the scene of that name; empty where there is none.
    std::function<void(const char* scene)> aim_camera;
    /// Ends the process with this code, at once.
    std::function<void(int)> end_process;
    /// A line for whoever started the program.
    std::function<void(const std::string&)> report;
    /// How long end_unasked() takes at most, whatever line, driver and disk do.
    std::chrono::milliseconds end_patience{2800};
  };

  Program(ProgramOptions options, AppSettings settings, Parts parts);
  ~Program();

  /// Begins; the event loop does the rest.
  void start();
  /// Ends the program as the exit does, without a question: what is being sent ends at its next boundary, the
  /// chip's brackets are closed, unsaved values go into the journal. May be called from any thread.
  void end_unasked();
  CMainFrame* frame() { return frame_.get(); }

 private:
  PortSessionEvents session_events();
  Task<> run();
  Task<PortSettings> initial_port();
  Task<OpenResult> probe(std::string device);
  Task<OpenResult> probe_chosen(std::string device);
  std::unique_ptr<QDialog> make_port_dialog(std::vector<PortInfo> ports, const PortSettings& current,
                                            const std::string& why_asked);
  Task<std::optional<PortSettings>> choose_port(PortSettings current, std::string why_asked);
  void open_window(PortSettings port);
  Task<bool> store(std::function<void(AppSettings&)> change);
  Task<bool> store_port(PortSettings settings);
  Task<bool> store_window_look();
  QVariantMap chosen_folders() const;
  /// The dialogs stand over the window, and choosers begin where they ended in the run before.
  void use_dialogs();
  void keep_journal();
  void keep_history();
  Task<> look_at_adapter();
  Task<> make_tour();
  /// The sign-off report of what the tour has measured.
  Task<> leave_report(std::filesystem::path folder);
  HelpWindow& help();
  void show_help();
  void show_help_of(const QString& topic);
  Task<> end(int exit_code);
  Task<> finish_files();
  Task<> write_out(Resolver<bool> over);
  Task<> offer_to_go(Resolver<bool> over);
  Task<> run_unasked_end();
  std::chrono::milliseconds transfer_patience() const;
  std::chrono::milliseconds chip_patience() const;

  const ProgramOptions options_;
  AppSettings settings_;
  Parts parts_;
  QtScheduler scheduler_;
  BackgroundThread ports_{scheduler_};    // looking for ports may take seconds; no file waits for it
  BackgroundThread folders_{scheduler_};  // a dead network's may take minutes, and no port waits for it
  BackgroundThread files_{scheduler_};
  CQV5123Doc document_;
  std::unique_ptr<Prompts> prompts_;
  PortSession session_;
  std::unique_ptr<CMainFrame> frame_;
  CQV5123View* view_ = nullptr;  // the frame's
  std::unique_ptr<HelpWindow> help_;
  std::unique_ptr<WindowMemory> memory_;
  std::unique_ptr<Journal> journal_;
  std::unique_ptr<HistoryTool> history_;
  std::unique_ptr<ReportTool> report_;
  std::optional<std::chrono::milliseconds> latency_timer_;  ///< of the port's adapter
  FlowSet flows_;
  Flow trouble_;
  bool ending_ = false;
};

}  // namespace qv5123
