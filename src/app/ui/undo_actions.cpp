#include "app/ui/undo_actions.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QSpinBox>

#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/ui/own_steps.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

QAction* add(QMenu& menu, const char* name, const QKeySequence& keys) {
  QAction* action = menu.addAction(name);
  action->setObjectName(QString(name).toLower());
  action->setShortcut(keys);
  action->setEnabled(false);
  return action;
}

void name_step(QAction* action, const QString& verb, const std::string& step) {
  // An ampersand of the step's name is no mnemonic.
  action->setText(step.empty() ? verb : verb + " " + to_qt(step).replace(u'&', QStringLiteral("&&")));
  action->setEnabled(!step.empty());
}

/// Whether the edit has something of its own to undo: text that is not taken yet.
bool is_being_typed(QObject* edit) {
  if (auto* box = qobject_cast<QSpinBox*>(edit)) {
    bool is_number = false;
    const int typed = box->findChild<QLineEdit*>()->text().toInt(&is_number);
    return !is_number || typed != box->value();
  }
  if (qobject_cast<QAbstractSpinBox*>(edit)) return false;
  const auto* line = qobject_cast<QLineEdit*>(edit);
  return !line || line->isUndoAvailable() || line->isRedoAvailable();
}

}  // namespace

UndoActions::UndoActions(QMenu& menu, CQV5123View& view, QObject* parent)
    : QObject(parent),
      view_(view),
      undo_(add(menu, "Undo", QKeySequence("Ctrl+Z"))),
      redo_(add(menu, "Redo", QKeySequence("Ctrl+Shift+Z"))) {
  // The same everywhere, and beside it what the system's other programs have.
  QList<QKeySequence> keys = QKeySequence::keyBindings(QKeySequence::Redo);
  keys.removeAll(redo_->shortcut());
  redo_->setShortcuts(QList{redo_->shortcut()} + keys);
  connect(undo_, &QAction::triggered, this, [this] { undo(); });
  connect(redo_, &QAction::triggered, this, [this] { redo(); });
  connect(&view, &CQV5123View::steps_changed, this, &UndoActions::show_steps);
  connect(&view.pages(), &PageArea::chosen, this, &UndoActions::follow_page);
  connect(&view.pages(), &PageArea::closed, this, &UndoActions::show_steps);
  qApp->installEventFilter(this);
}

OwnSteps* UndoActions::own_steps() const {
  const auto page = view_.pages().current();
  QWidget* widget = page ? view_.pages().page_widget(*page) : nullptr;
  return widget && !widget->isHidden() ? dynamic_cast<OwnSteps*>(widget) : nullptr;
}

void UndoActions::follow_page() {
  if (OwnSteps* own = own_steps()) {
    own->on_steps_changed([self = QPointer(this)] {
      if (self) self->show_steps();
    });
  }
  show_steps();
}

void UndoActions::show_steps() {
  const OwnSteps* own = own_steps();
  const std::string undo = own ? own->next_undo() : "";
  const std::string redo = own ? own->next_redo() : "";
  name_step(undo_, "Undo", undo.empty() ? view_.steps().next_undo() : undo);
  name_step(redo_, "Redo", redo.empty() ? view_.steps().next_redo() : redo);
}

void UndoActions::undo() {
  OwnSteps* own = own_steps();
  if (own && !own->next_undo().empty()) return own->undo_step();
  view_.steps().undo();
}

void UndoActions::redo() {
  OwnSteps* own = own_steps();
  if (own && !own->next_redo().empty()) return own->redo_step();
  view_.steps().redo();
}

bool UndoActions::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride) return false;
  const auto* key = static_cast<QKeyEvent*>(event);
  if (!key->matches(QKeySequence::Undo) && !key->matches(QKeySequence::Redo)) return false;
  const bool is_edit = qobject_cast<QAbstractSpinBox*>(watched) || qobject_cast<QLineEdit*>(watched);
  if (!is_edit || is_being_typed(watched)) return false;
  event->ignore();
  return true;
}

}  // namespace qv5123
