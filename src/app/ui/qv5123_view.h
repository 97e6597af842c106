#pragma once

#include <QWidget>
#include <filesystem>
#include <map>
#include <optional>

#include "app/ui/named_host.h"
#include "app/ui/pages.h"
#include "console/console_text.h"
#include "console/image_transfer.h"
#include "console/journal_entry.h"
#include "console/page_host.h"
#include "console/port_in_use.h"
#include "console/recent_files.h"
#include "console/setting_files.h"
#include "console/startup_reply.h"
#include "console/status_board.h"
#include "state/image_check.h"
#include "state/undo_list.h"
#include "state/value_states.h"
#include "state/write_journal.h"

namespace qv5123 {

class ColumnDrawer;
class ConsoleView;
class ControlColumn;
class PageArea;
class TypedText;
class WriteHistory;

/// The main form: the tool pages on the left, the column with port, files, keys, downloads and console on the
/// right. It is what the pages know of the window.
class CQV5123View final : public QWidget, public PageHost {
  Q_OBJECT

 public:
  /// What happens by itself at the start.
  struct Startup {
    /// Loaded instead of offering the file dialog.
    std::optional<std::filesystem::path> setting_file;
    bool offer_setting_file = true;
    /// Restores what an earlier run left, before any file is loaded; true when it did, which leaves no file
    /// to load. May be empty.
    std::function<Task<bool>()> restore = {};
    /// Chosen after the Registers page, which always comes first.
    std::optional<PageId> page = {};
  };

  CQV5123View(CommandLink& link, Prompts& prompts, Background& background, CQV5123Doc& document,
              PageFactories factories, QWidget* parent = nullptr);
  ~CQV5123View() override;

  /// Hands over the port, which says what it has to say through the calls below. Once, before start().
  void use_port(PortSettings settings, PortInUse::Surroundings surroundings);
  /// The setting files to offer beside "Load File...". recent_files_changed() tells of others.
  void set_recent_files(RecentFiles files);
  const RecentFiles& recent_files() const { return recent_files_; }
  /// Opens the port, offers the setting file and opens the Registers page once the chip had time to report.
  void start(Startup startup);
  /// From start() until the Registers page is open.
  bool starting() const { return starting_; }

  /// What saving would write now, and takes it over in another run. image_saved() tells what a file holds.
  JournalEntry unsaved() const;
  void restore(const JournalEntry& entry, bool file_is_newer);

  /// Text from the chip, 8-bit characters.
  void take_received(const std::string& text);
  /// Whether the user would not wait for a save that stands still.
  bool gave_up_writing() const { return files_.given_up(); }
  /// Whether the line takes no bytes at present: then nobody waits long for what should still leave.
  void set_line_stands(bool stands) { line_stands_ = stands; }
  /// Ends the downloads that are under way as the chip can take, or after `patience` where they stand.
  Task<> end_transfers(std::chrono::milliseconds patience);
  /// Whether anything may be sent once the chip was left.
  enum class Leave { for_good, for_now };
  /// What is being sent ends at its next boundary, open brackets are closed and every page's last words
  /// leave, all of it within `patience`. False, and said, when that did not reach the chip.
  Task<bool> leave_chip(std::chrono::milliseconds patience, Leave leave);
  /// The exit question. closing_confirmed() follows unless the user stays.
  void request_exit();

  CommandLink& link() override { return link_; }
  CQV5123Doc& document() override { return document_; }
  Prompts& prompts() override { return prompts_; }
  Background& background() override { return background_; }
  /// What the form's own work has to say; a page speaks through its NamedHost.
  void show_status(const std::string& text) override { say(StatusRank::outcome, kAboutForm, text); }
  void show_failure(const std::string& text) override { say(StatusRank::failure, kAboutForm, text); }
  void send_and_tell(const std::string& what, Traffic traffic,
                     std::shared_ptr<const WriteNote> note = {}) override {
    send_and_tell_of(kAboutForm, what, std::move(traffic), std::move(note));
  }
  /// The same for a page.
  void send_and_tell_of(const std::string& kind, const std::string& what, Traffic traffic,
                        std::shared_ptr<const WriteNote> note);
  /// Says something in the status bar. At most 256 characters are shown.
  void say(StatusRank rank, const std::string& kind, const std::string& text);
  /// Only lists it among the messages: it is shown elsewhere.
  void remember(StatusRank rank, const std::string& kind, const std::string& text) {
    board_.remember(rank, kind, text);
  }
  const StatusBoard& board() const { return board_; }
  /// The user has read the failures.
  void mark_read();
  void show_progress(std::optional<int> percent) override;
  void append_console(const std::string& text) override;
  Task<bool> write_user_data_file() override { return files_.write_user_data_file(); }
  Task<bool> save_everything() override { return files_.save_everything(); }
  Task<> reload_user_data_file() override;
  void set_busy(bool busy) override;
  void draft_saved() override { emit font_saved(); }
  /// What is known of every value of the tuning pages.
  ValueStates& values() { return values_; }
  /// The steps that can be taken back. steps_changed() tells of others.
  UndoList& steps() { return steps_; }
  /// The journal of writes, for who compares with a moment of it; it must outlive the pages.
  /// Null from when it is gone.
  void use_history(const WriteHistory* history) { history_ = history; }
  /// Opens a tuning page that was not opened yet, behind the one that is shown, and waits until it has read
  /// itself from the chip.
  Task<> open_behind(std::size_t page);
  /// Shows the page "Compare" with what the chip held at a moment of a journal.
  void compare_with(const KnownValues& then, const std::string& when);
  PageArea& pages() { return *pages_; }
  ColumnDrawer& column() { return *drawer_; }
  const ConsoleText& console_text() const { return console_text_; }
  ConsoleView& console();
  const StartupReply& startup_reply() const { return startup_reply_; }
  PortInUse* port() { return port_ ? &*port_ : nullptr; }

 public slots:
  void change_port();
  /// The serial close command.
  void close_serial();
  /// The same for a key, which may be pressed by mistake.
  void ask_and_close_serial();
  void load_setting_file();
  /// Every page's values into the setting file in use; asks for one where there is none.
  void save_setting_file();
  void save_setting_file_as();

 signals:
  void status_changed(const QString& text);
  void messages_read();
  void recent_files_changed();
  void image_saved(const qv5123::UserDataImage& image);
  void font_saved();
  void steps_changed();
  /// The user wants to choose a moment of the journal of writes.
  void moment_wanted();
  /// What was sent without a tuning page is being read back, or was: `about` names the user data as a whole
  /// or a register file. An empty text: what was told of it is past. `again` sends what differs once more;
  /// empty where there is nothing to send.
  void checked(const QString& about, const QString& text, const QStringList& differences,
               const std::function<void()>& again);
  void progress_changed(std::optional<int> percent);
  /// The user has answered that the program is to end; what was to be saved is whole on the disk.
  void closing_confirmed();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  PageFactories with_compare(PageFactories factories);
  void leave_room();
  void connect_column();
  void connect_downloads();
  SettingFiles::Surroundings files_surroundings();
  TransferView transfer_view();

  Task<> run_start(Startup startup);
  Task<> begin_with_image(Startup startup);
  Task<> load_file(std::optional<std::filesystem::path> path);
  void reset_chip();
  /// What saving would change in the setting file, for who is asked whether to.
  std::string what_would_change() const;
  Task<> copy_to_factory();
  Task<> store_version();
  Task<> choose_osd_pattern(int selection);
  Task<> transfer(TransferKind kind);
  void cancel_transfer();
  Task<> check_image();
  Task<> run_repair_image();
  void repair_image();
  void tell_image_checked();
  void check_registers(RegisterDesk& desk);
  void tell_checked(const char* about, const std::string& text, const std::vector<std::string>& differences,
                    const std::function<void()>& again);
  Task<> end_waiting();
  /// A command cannot leave while the chip expects the rest of an image: asks what to do. True when it can
  /// now.
  Task<bool> may_interrupt_waiting();
  Task<> ask_about_waiting();
  void show_transferring();
  /// As the exit asks while something is being sent; what is sent then ends first.
  Task<bool> may_leave_port(std::string question);
  Task<> run_change_port();
  Task<> run_close_serial();
  Task<> run_ask_and_close_serial();
  Task<> exit_flow();
  Task<> send_last_words(Leave leave, Resolver<bool> over);
  Task<bool> interrupt_with(Traffic last);
  void read_startup_reply();
  void show_version(int slot);
  void show_image();
  void file_used(const std::filesystem::path& path);
  void load_recent_file(int position);
  void page_chosen(PageId id);
  void file_holds(const std::filesystem::path& path, const UserDataImage& image);
  /// The dots of the menu's items, and the star of the setting file.
  void show_differences();
  void send_text(const QString& text);
  PageHost& host_of(const PageEntry& page);
  void tell_chosen(const QString& text);
  /// Sends flush by flush, another command may come between two, and says what came of it.
  void tell_sent(std::string what, Traffic traffic);
  Task<> tell_what_left(std::string what, std::vector<Pending<JobResult>> sent, std::string sent_text,
                        std::string kind);

  CommandLink& link_;
  Prompts& prompts_;
  Background& background_;
  CQV5123Doc& document_;
  StatusBoard board_;
  ConsoleText console_text_;
  StartupReply startup_reply_;
  ValueStates values_;
  UndoList steps_;
  ImageCheck image_check_;
  std::optional<PortInUse> port_;
  RecentFiles recent_files_;
  SettingFiles files_;
  ImageTransfer transfer_;
  std::map<PageId, NamedHost> hosts_;  // of the pages that were made
  PageArea* pages_ = nullptr;
  ControlColumn* column_ = nullptr;
  ColumnDrawer* drawer_ = nullptr;
  TypedText* typed_ = nullptr;
  const WriteHistory* history_ = nullptr;
  int transfers_ = 0;
  bool asking_about_waiting_ = false;
  int busy_ = 0;  // how many pages are at work
  bool line_stands_ = false;
  bool starting_ = false;
  // Last, so that what waits ends before anything it uses.
  FlowSet flows_;
  Flow image_flow_;
  Flow port_change_;
  Flow exit_;
};

}  // namespace qv5123
