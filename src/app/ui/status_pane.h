#pragma once

#include <QAbstractButton>

class QLabel;

namespace qv5123 {

class StatusBoard;

/// The status bar's message pane: the failure that was not read yet, marked, and beside it the latest
/// message. A click, or the space bar, asks for the list of all of them.
class StatusPane final : public QAbstractButton {
  Q_OBJECT

 public:
  explicit StatusPane(QWidget* parent = nullptr);

  void show_messages(const StatusBoard& board);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void lay_out();
  void make_mark();

  QLabel* mark_ = nullptr;
  QLabel* failure_ = nullptr;
  QLabel* latest_ = nullptr;
};

}  // namespace qv5123
