#pragma once

#include <QMainWindow>
#include <functional>
#include <optional>

class QMenu;
class QProgressBar;

namespace qv5123 {

class CQV5123View;
class MessageList;
class PortState;
class StatusPane;
class TuningDesk;
class VerifyPane;
struct ReadBackResult;
struct Verification;

/// The place of a window of this size, in the middle of the screen's `available` part, with room for the
/// `frame` that the window system puts around it. It is smaller where there is not enough.
QRect place_on_screen(QSize size, const QRect& available, const QMargins& frame);

/// The frame window around the main form: menu bar, status bar, exit question.
class CMainFrame final : public QMainWindow {
  Q_OBJECT

 public:
  /// Takes over the form.
  explicit CMainFrame(CQV5123View* view);

  /// Shows how far something is, 0..100, beside the message pane, or nothing.
  void show_progress(std::optional<int> percent);
  /// Shows whether the port is there.
  void show_connected(bool connected);
  PortState& port_state() { return *connection_; }
  /// The menu of what is no page.
  QMenu& tools() { return *tools_; }
  /// Moves and shrinks the window, its frame included, until the screen holds it.
  void keep_on_screen();
  /// Opens the window with all messages, which counts as reading them.
  void list_messages();

 signals:
  void help_wanted();
  void topic_wanted(const QString& topic);
  /// The user has switched "Verify saves".
  void verify_saves_switched(bool on);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  /// A menu item's status tip is shown where the item is, never over a message.
  bool event(QEvent* event) override;

 private:
  void fill_menu_bar();
  void fill_tools();
  void fill_status_bar();
  void show_verification(TuningDesk& desk, const Verification* found);
  void show_checked(const QString& about, const QString& text, const QStringList& differences,
                    const std::function<void()>& again);
  void take_read_back(ReadBackResult found);
  void fit_to_screen();
  void show_messages();

  CQV5123View& view_;
  StatusPane* messages_ = nullptr;
  MessageList* list_ = nullptr;
  QProgressBar* progress_ = nullptr;
  PortState* connection_ = nullptr;
  QMenu* tools_ = nullptr;
  VerifyPane* verification_ = nullptr;
};

}  // namespace qv5123
