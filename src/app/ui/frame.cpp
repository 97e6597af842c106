#include "app/ui/frame.h"

#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>

#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

/// Room for the largest page beside the column, on the smallest screen that is provided for.
constexpr QSize kUsualSize{1280, 800};

}  // namespace

CMainFrame::CMainFrame(CQV5123View* view) : view_(*view) {
  setWindowTitle(tr("QV512xC Adjustment Program  V 2.3_2"));
  setCentralWidget(view);
  fill_menu_bar();
  fill_status_bar();
  connect(view, &CQV5123View::status_changed, this, &CMainFrame::show_status);
  connect(view, &CQV5123View::progress_changed, this, &CMainFrame::show_progress);
  fit_to_screen();
}

void CMainFrame::fill_menu_bar() {
  menuBar()->setNativeMenuBar(false);
  menuBar()->addActions(view_.pages().actions_in_order());
  QAction* help = menuBar()->addAction(tr("&Help"));
  help->setShortcut(QKeySequence::HelpContents);
  help->setStatusTip(tr("How to use this program"));
  connect(help, &QAction::triggered, this, &CMainFrame::help_wanted);

  auto* close_port = new QAction(tr("Close serial port"), this);
  close_port->setObjectName("close-serial");
  close_port->setShortcut(QKeySequence(tr("Ctrl+Shift+C")));
  connect(close_port, &QAction::triggered, &view_, &CQV5123View::close_serial);
  addAction(close_port);
}

void CMainFrame::fill_status_bar() {
  message_ = new QLabel(this);
  message_->setTextFormat(Qt::PlainText);
  message_->setAccessibleName(tr("Status message"));
  // A long message is cut, it never widens the window.
  message_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  progress_ = new QProgressBar(this);
  progress_->setRange(0, 100);
  progress_->setFixedWidth(160);
  progress_->setMaximumHeight(message_->sizeHint().height());
  progress_->setAccessibleName(tr("Progress of the page's operation"));
  progress_->hide();
  connection_ = new QLabel(this);
  connection_->setAccessibleName(tr("Port state"));
  statusBar()->addWidget(message_, 1);
  statusBar()->addPermanentWidget(progress_);
  statusBar()->addPermanentWidget(connection_);
  show_connected(false);
}

void CMainFrame::fit_to_screen() {
  resize(kUsualSize.boundedTo(screen()->availableGeometry().size()));
}

void CMainFrame::show_status(const QString& text) {
  message_->setText(text);
  message_->setToolTip(plain_tool_tip(text));
}

void CMainFrame::show_progress(std::optional<int> percent) {
  progress_->setVisible(percent.has_value());
  if (percent) progress_->setValue(*percent);
}

void CMainFrame::show_connected(bool connected) {
  connection_->setText(connected ? tr("Port open") : tr("Port closed"));
}

void CMainFrame::closeEvent(QCloseEvent* event) {
  // The process ends by itself once the user has answered.
  event->ignore();
  view_.request_exit();
}

}  // namespace qv5123
