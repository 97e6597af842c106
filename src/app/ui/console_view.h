#pragma once

#include <QPlainTextEdit>
#include <QString>

#include "console/console_text.h"

namespace qv5123 {

/// The console: read-only text that follows a ConsoleText in slices, so that a flood leaves the window its
/// turns. What is queued is shown in order.
class ConsoleView final : public QPlainTextEdit {
  Q_OBJECT

 public:
  /// A longer line is shown broken: the cost of a line grows with its length, and a chip that never ends one
  /// must not stop the window.
  static constexpr int kLongestLine = 1024;

  explicit ConsoleView(QWidget* parent = nullptr);

  /// Follows a change of the text and scrolls to the last line.
  void apply(const ConsoleChange& change);
  /// Empties what is shown and what is queued.
  void clear_text();
  /// Whether everything queued is shown.
  bool settled() const { return queued_.isEmpty() && to_drop_ == 0; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void request_turn();
  void show_slice();
  void forget_shown();
  void append_some();
  void break_line(QTextCursor& cursor);
  void drop_some();
  void drop_blocks(QTextCursor& cursor);

  QString queued_;
  qsizetype shown_ = 0;      // how much of queued_ is shown already
  std::size_t to_drop_ = 0;  // positions still to be taken away in front
  int column_ = 0;           // of the last line
  bool turn_requested_ = false;
  bool painted_ = false;
  bool has_font_ = false;
};

}  // namespace qv5123
