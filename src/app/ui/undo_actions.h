#pragma once

#include <QObject>

class QAction;
class QMenu;

namespace qv5123 {

class CQV5123View;

/// "Undo" and "Redo" of the menu, each naming its step. Text that is being typed in an edit is the edit's own
/// to undo, and so is a drawing in the font editor, which keeps steps of its own.
class UndoActions final : public QObject {
  Q_OBJECT

 public:
  /// The view must outlive them.
  UndoActions(QMenu& menu, CQV5123View& view, QObject* parent);

 protected:
  /// An edit takes the keys for itself as long as it has the focus, also with nothing to undo.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void show_steps();

  CQV5123View& view_;
  QAction* undo_;
  QAction* redo_;
};

}  // namespace qv5123
