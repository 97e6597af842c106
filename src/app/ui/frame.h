#pragma once

#include <QMainWindow>
#include <optional>

class QLabel;
class QProgressBar;

namespace qv5123 {

class CQV5123View;
class MessageList;
class StatusPane;

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

 signals:
  void help_wanted();

 protected:
  void closeEvent(QCloseEvent* event) override;
  /// A menu item's status tip is shown where the item is, never over a message.
  bool event(QEvent* event) override;

 private:
  void fill_menu_bar();
  void fill_status_bar();
  void fit_to_screen();
  void show_messages();
  void list_messages();

  CQV5123View& view_;
  StatusPane* messages_ = nullptr;
  MessageList* list_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QLabel* connection_ = nullptr;
};

}  // namespace qv5123
