#pragma once

#include <QWidget>

class QTextBrowser;

namespace qv5123 {

/// The help that ships inside the program, in a window of its own beside the main window.
class HelpWindow final : public QWidget {
  Q_OBJECT

 public:
  explicit HelpWindow(QWidget* parent = nullptr);

 private:
  QTextBrowser* browser_ = nullptr;
};

}  // namespace qv5123
