#include "app/ui/help_window.h"

#include <QAction>
#include <QFile>
#include <QToolBar>
#include <QVBoxLayout>

namespace qv5123 {

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
  setWindowTitle("QV5123 Help");
  browser_ = new QTextBrowser(this);
  browser_->setAccessibleName("Help text");
  browser_->setOpenExternalLinks(false);
  show_topic({});
  auto* bar = new QToolBar(this);
  connect(bar->addAction("Contents"), &QAction::triggered, this, [this] { show_topic({}); });
  QAction* back = bar->addAction("Back");
  back->setShortcut(QKeySequence::Back);
  back->setEnabled(false);
  connect(back, &QAction::triggered, browser_, &QTextBrowser::backward);
  connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(0);
  rows->addWidget(bar);
  rows->addWidget(browser_, 1);
  resize(720, 640);
}

void HelpWindow::show_topic(const QString& name) {
  const QString file = QStringLiteral("help/%1.md").arg(name.isEmpty() ? QStringLiteral("index") : name);
  if (!QFile::exists(QStringLiteral(":/") + file)) return;
  browser_->setSource(QUrl(QStringLiteral("qrc:/") + file), QTextDocument::MarkdownResource);
}

}  // namespace qv5123
