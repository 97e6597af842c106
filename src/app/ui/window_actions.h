#pragma once

#include <QObject>
#include <functional>
#include <vector>

class QAction;
class QMenu;

namespace qv5123 {

class CMainFrame;
class CQV5123View;
class FindDialog;
struct FindItem;

/// The commands that have a key wherever the focus is. All of them stand in the menu "Tools".
class WindowActions final : public QObject {
 public:
  /// Adds them to the frame's menu. Both outlive this.
  WindowActions(CMainFrame& frame, CQV5123View& view);

 private:
  QAction* add(const char* text, const char* keys, const char* name, std::function<void()> act);
  void add_files();
  void add_page_commands();
  void add_find();
  void add_window_commands();
  /// Presses the button of the shown page that is marked with the command.
  bool press(const char* command);
  void look_for(const QString& title, std::vector<FindItem> items);

  CMainFrame& frame_;
  CQV5123View& view_;
  QMenu& menu_;
  FindDialog* find_ = nullptr;
};

/// A table of all keys in the window and what they do, as Markdown, made from the actions that are there and
/// from what is known of the parts that nobody has opened.
QString shortcuts_markdown(const QObject& window);

}  // namespace qv5123
