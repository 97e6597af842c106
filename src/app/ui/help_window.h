#pragma once

#include <QTextBrowser>
#include <functional>

namespace qv5123 {

class HelpBrowser;

/// The help that ships inside the program, in a window of its own beside the main window.
class HelpWindow final : public QWidget {
  Q_OBJECT

 public:
  explicit HelpWindow(QWidget* parent = nullptr);

  /// Shows the help of one topic, such as a page by its name; empty for the contents. Nothing changes for a
  /// topic that there is not.
  void show_topic(const QString& name);
  /// What makes the table of keys, as Markdown, whenever it is to be shown.
  void tell_keys(std::function<QString()> keys);
  const QTextBrowser& browser() const;

 signals:
  /// A link that does something was followed; the name of the command, as the window's actions have it.
  void command_chosen(const QString& name);

 private:
  HelpBrowser* browser_ = nullptr;
};

}  // namespace qv5123
