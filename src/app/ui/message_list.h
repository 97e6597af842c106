#pragma once

#include <QDialog>
#include <chrono>

class QListWidget;

namespace qv5123 {

class StatusBoard;

/// The window with everything that the status bar said, the last at the end. Stays open beside the main
/// window.
class MessageList final : public QDialog {
  Q_OBJECT

 public:
  explicit MessageList(QWidget* parent = nullptr);

  void show_messages(const StatusBoard& board);

 private:
  void copy_chosen() const;

  QListWidget* list_ = nullptr;
  std::chrono::system_clock::time_point shown_until_;  // of the last message
};

}  // namespace qv5123
