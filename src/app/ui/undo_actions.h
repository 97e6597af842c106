#pragma once

#include <QObject>

class QAction;
class QMenu;

namespace qv5123 {

class CQV5123View;
class OwnSteps;

/// "Undo" and "Redo" of the menu, each naming its step: one that the page which is shown keeps itself, and
/// where it has none, the one of the tuning pages. Text that is being typed in an edit is the edit's own to
/// undo.
class UndoActions final : public QObject {
  Q_OBJECT

 public:
  /// The view must outlive them.
  UndoActions(QMenu& menu, CQV5123View& view, QObject* parent);

 protected:
  /// An edit takes the keys for itself as long as it has the focus, also with nothing to undo.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// The page that is shown, where it has steps of its own.
  OwnSteps* own_steps() const;
  void follow_page();
  void show_steps();
  void undo();
  void redo();

  CQV5123View& view_;
  QAction* undo_;
  QAction* redo_;
};

}  // namespace qv5123
