#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>
#include <optional>

class QLabel;
class QPushButton;

namespace qv5123 {

/// What came of reading back what was sent.
struct ReadBackResult {
  QString about;             ///< what was sent: a page, the user data as a whole, a register file
  QString text;              ///< the whole of it in words
  QStringList details = {};  ///< behind the text in the tooltip
  bool verified = false;
  std::function<void()> again = {};  ///< sends what lacks once more; empty where there is nothing to send
};

/// The status bar's pane for what came of reading a page back after its save. Out of sight while there is
/// nothing to say.
class VerifyPane final : public QWidget {
  Q_OBJECT

 public:
  explicit VerifyPane(QWidget* parent = nullptr);

  /// Something is being read back. What was found before is shown again if that is broken off.
  void show_under_way(ReadBackResult begun);
  /// Takes the place of what was found before.
  void show_result(ReadBackResult found);
  /// `about` is being sent anew: what was found of it is past, and so is what nobody need see to. What was
  /// not verified of another one stays.
  void forget(const QString& about);

 private:
  void show_current();
  void send_again();

  std::optional<ReadBackResult> under_way_;
  std::optional<ReadBackResult> found_;
  QLabel* label_;
  QPushButton* repair_;
};

}  // namespace qv5123
