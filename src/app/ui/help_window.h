#pragma once

#include <QTextBrowser>

namespace qv5123 {

/// The help that ships inside the program, in a window of its own beside the main window.
class HelpWindow final : public QWidget {
  Q_OBJECT

 public:
  explicit HelpWindow(QWidget* parent = nullptr);

  /// Shows the help of one topic, such as a page by its name; empty for the contents. Nothing changes for a
  /// topic that there is not.
  void show_topic(const QString& name);
  const QTextBrowser& browser() const { return *browser_; }

 private:
  QTextBrowser* browser_ = nullptr;
};

}  // namespace qv5123
