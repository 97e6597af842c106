#include "console/ui/help_window.h"

#include <QAction>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

namespace qv5123 {

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
  setWindowTitle(tr("QV5123 Help"));
  browser_ = new QTextBrowser(this);
  browser_->setAccessibleName(tr("Help text"));
  browser_->setOpenExternalLinks(false);
  browser_->setSource(QUrl("qrc:/help/index.md"), QTextDocument::MarkdownResource);
  auto* bar = new QToolBar(this);
  connect(bar->addAction(tr("Contents")), &QAction::triggered, browser_, &QTextBrowser::home);
  QAction* back = bar->addAction(tr("Back"));
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

}  // namespace qv5123
