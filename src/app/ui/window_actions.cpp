#include "app/ui/window_actions.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "app/ui/column_drawer.h"
#include "app/ui/find_places.h"
#include "app/ui/frame.h"
#include "app/ui/page_area.h"
#include "app/ui/page_commands.h"
#include "app/ui/qv5123_view.h"
#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

QString text_of(const QList<QKeySequence>& sequences) {
  QStringList keys;
  for (const QKeySequence& each : sequences)
    if (!each.isEmpty()) keys << each.toString(QKeySequence::NativeText);
  return keys.join(", ");
}

/// Those are told of whether the part is there or not.
bool is_of_a_part(const QString& keys, const QString& what) {
  return std::any_of(kPartKeys.begin(), kPartKeys.end(), [&](const PartKey& key) {
    return what == QLatin1String(key.text) && keys == text_of({QKeySequence(key.keys)});
  });
}

QString row_of(const QString& keys, QString what) {
  return QStringLiteral("| %1 | %2 |\n").arg(keys, what.replace(u'<', "&lt;").replace(u'|', "\\|"));
}

}  // namespace

WindowActions::WindowActions(CMainFrame& frame, CQV5123View& view)
    : QObject(&frame), frame_(frame), view_(view), menu_(frame.tools()) {
  if (!menu_.isEmpty()) menu_.addSeparator();
  add_files();
  menu_.addSeparator();
  add_page_commands();
  menu_.addSeparator();
  add_find();
  add_window_commands();
}

QAction* WindowActions::add(const char* text, const char* keys, const char* name, std::function<void()> act) {
  QAction* action = menu_.addAction(text);
  action->setObjectName(name);
  action->setShortcuts(QKeySequence::listFromString(keys));
  connect(action, &QAction::triggered, this, std::move(act));
  return action;
}

void WindowActions::add_files() {
  add("&Load setting file...", "Ctrl+O", "load-settings", [this] { view_.load_setting_file(); });
  add("&Save setting file", "Ctrl+S", "save-settings", [this] { view_.save_setting_file(); });
  add("Save setting file &as...", "Ctrl+Shift+S", "save-settings-as",
      [this] { view_.save_setting_file_as(); });
}

void WindowActions::add_page_commands() {
  add("Load <- &ISP", "Ctrl+L", "load-page", [this] { press(kLoadCommand); });
  add("&File/Flash Save", "Ctrl+Return; Ctrl+Enter", "save-page", [this] { press(kSaveCommand); });
  add("&Read again", "F5", "read-again", [this] {
    if (!press(kReadCommand)) press(kLoadCommand);
  });
}

void WindowActions::add_find() {
  add("Fin&d...", "Ctrl+K", "find", [this] { look_for("Find", places_in(frame_, view_)); });
  add("Find a re&gister...", "Ctrl+F", "find-register",
      [this] { look_for("Find a register", registers_in(view_)); });
}

void WindowActions::look_for(const QString& title, std::vector<FindItem> items) {
  if (!find_) find_ = new FindDialog(&frame_);
  find_->look_for(title, std::move(items));
}

void WindowActions::add_window_commands() {
  add("Fold the &column", "F9", "fold-column", [this] { view_.column().choose_next(); });
  add("First &steps", "", "first-steps", [this] { emit frame_.topic_wanted("first-steps"); });
  add("List &messages", "Ctrl+Shift+M", "list-messages", [this] { frame_.list_messages(); });
  add("Change COM &Port...", "", "change-port", [this] { view_.change_port(); });
  add("Close serial port...", "Ctrl+Shift+X", "close-serial", [this] { view_.ask_and_close_serial(); });
}

bool WindowActions::press(const char* command) {
  const auto page = view_.pages().current();
  const QWidget* widget = page ? view_.pages().page_widget(*page) : nullptr;
  if (!widget || !widget->isVisible()) return false;
  for (QPushButton* button : widget->findChildren<QPushButton*>()) {
    if (button->property(kCommand).toByteArray() != command) continue;
    button->click();
    return true;
  }
  return false;
}

QString shortcuts_markdown(const QObject& window) {
  QStringList rows;
  for (const QAction* action : window.findChildren<QAction*>()) {
    const QString keys = text_of(action->shortcuts()), what = plain_caption(action->text());
    if (!keys.isEmpty() && !is_of_a_part(keys, what)) rows << row_of(keys, what);
  }
  for (const PartKey& key : kPartKeys)
    rows << row_of(text_of({QKeySequence(key.keys)}), QStringLiteral("%1 (%2)").arg(key.text, key.where));
  rows.removeDuplicates();
  return "| Keys | |\n|---|---|\n" + rows.join(QString());
}

}  // namespace qv5123
