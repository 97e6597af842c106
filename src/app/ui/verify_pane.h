#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace qv5123 {

/// The status bar's pane for what came of reading a page back after its save. Out of sight while there is
/// nothing to say.
class VerifyPane final : public QWidget {
  Q_OBJECT

 public:
  explicit VerifyPane(QWidget* parent = nullptr);

  /// `details` stand in the tooltip, behind the whole text. An empty text hides the pane.
  void show_text(const QString& text, const QStringList& details = {});
  /// Whether there is something to send again.
  void offer_repair(bool offered);

 signals:
  void repair_wanted();

 private:
  QLabel* label_;
  QPushButton* repair_;
};

}  // namespace qv5123
