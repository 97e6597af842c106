#pragma once

#include <QDialog>
#include <cstddef>

class QListWidget;

namespace qv5123 {

class StatusBoard;
struct StatusMessage;

/// The window with everything that the status bar said, the last at the end. Stays open beside the main
/// window.
class MessageList final : public QDialog {
  Q_OBJECT

 public:
  explicit MessageList(QWidget* parent = nullptr);

  /// Of the same board every time.
  void show_messages(const StatusBoard& board);

 private:
  void show_line(int row, const StatusMessage& message);
  void copy_chosen() const;

  QListWidget* list_ = nullptr;
  std::size_t forgotten_ = 0;  // how many messages were said before the first that is listed
};

}  // namespace qv5123
