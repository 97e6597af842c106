#include "app/ui/frame.h"

#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTimer>
#include <QToolTip>
#include <QWindow>
#include <chrono>

#include "app/ui/message_list.h"
#include "app/ui/page_area.h"
#include "app/ui/port_state.h"
#include "app/ui/qv5123_view.h"
#include "app/ui/status_pane.h"
#include "app/ui/undo_actions.h"
#include "app/ui/verify_pane.h"
#include "app/ui/window_actions.h"
#include "base/ui/qt_text.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {
namespace {

/// Room for the largest page beside the column, on the smallest screen that is provided for.
constexpr QSize kUsualSize{1280, 800};
/// What window systems put around a window, as long as this one has not told.
constexpr QMargins kUsualFrame{4, 32, 4, 4};

constexpr std::chrono::milliseconds kFrameKnown{300};

/// How the texts of a read-back begin that is under way, and of one that has found everything as it was sent.
constexpr QLatin1String kVerifying("Verifying...");
constexpr QLatin1String kVerified("Verified");

QString title_of(const TuningDesk& desk) {
  return page_title(tuning_page_id(desk.model().texts().name));
}

}  // namespace

QRect place_on_screen(QSize size, const QRect& available, const QMargins& frame) {
  const QRect room = available.marginsRemoved(frame);
  QRect place(QPoint(), size.boundedTo(room.size()));
  place.moveCenter(room.center());
  return place;
}

CMainFrame::CMainFrame(CQV5123View* view) : view_(*view) {
  setWindowTitle("QV512xC Adjustment Program  V 2.3_2");
  setCentralWidget(view);
  fill_menu_bar();
  fill_status_bar();
  fill_tools();
  new WindowActions(*this, *view);
  connect(view, &CQV5123View::status_changed, this, &CMainFrame::show_messages);
  connect(view, &CQV5123View::messages_read, this, &CMainFrame::show_messages);
  connect(view, &CQV5123View::progress_changed, this, &CMainFrame::show_progress);
  view->values().on_verification(
      [this](TuningDesk& desk, const Verification* found) { show_verification(desk, found); });
  view->values().on_save([this](TuningDesk& desk) { verification_->forget(title_of(desk)); });
  connect(view, &CQV5123View::checked, this, &CMainFrame::show_checked);
  fit_to_screen();
}

void CMainFrame::fill_menu_bar() {
  menuBar()->setNativeMenuBar(false);
  menuBar()->addActions(view_.pages().actions_in_order());
  tools_ = menuBar()->addMenu("&Tools");
  QAction* help = menuBar()->addAction("&Help");
  help->setShortcut(QKeySequence::HelpContents);
  help->setStatusTip("How to use this program");
  connect(help, &QAction::triggered, this, &CMainFrame::help_wanted);
}

void CMainFrame::fill_tools() {
  new UndoActions(*tools_, view_, this);
  tools_->addSeparator();
  tools_->addAction(view_.pages().action(PageId::compare));
  QAction* verify = tools_->addAction("&Verify saves");
  verify->setObjectName("verify-saves");
  verify->setStatusTip("Reads a page back after its full save and compares it with what was sent");
  verify->setCheckable(true);
  verify->setChecked(view_.values().verifies_saves());
  connect(verify, &QAction::toggled, this, [this](bool on) {
    view_.values().verify_saves(on);
    emit verify_saves_switched(on);
  });
  tools_->addSeparator();
  QAction* health = tools_->addAction("Link health...");
  health->setObjectName("link-health");
  connect(health, &QAction::triggered, connection_, &PortState::open_dialog);
}

void CMainFrame::fill_status_bar() {
  messages_ = new StatusPane(this);
  connect(messages_, &StatusPane::clicked, this, &CMainFrame::list_messages);
  progress_ = new QProgressBar(this);
  progress_->setRange(0, 100);
  progress_->setFixedWidth(160);
  progress_->setMaximumHeight(messages_->sizeHint().height());
  progress_->setAccessibleName("Progress of the page's operation");
  progress_->hide();
  connection_ = new PortState(this);
  verification_ = new VerifyPane(this);
  statusBar()->addWidget(messages_, 1);
  statusBar()->addPermanentWidget(verification_);
  statusBar()->addPermanentWidget(progress_);
  statusBar()->addPermanentWidget(connection_);
  show_connected(false);
}

void CMainFrame::show_verification(TuningDesk& desk, const Verification* found) {
  if (!found) return verification_->show_under_way({title_of(desk), kVerifying});
  const auto& fields = desk.model().fields();
  ReadBackResult read{title_of(desk), to_qt(verification_text(fields, *found))};
  for (const std::string& text : difference_texts(fields, *found)) read.details << to_qt(text);
  read.verified = found->end == Verification::End::verified;
  if (!found->to_repair().empty()) read.again = [&desk, again = *found] { desk.start_repair(again); };
  take_read_back(std::move(read));
}

void CMainFrame::show_checked(const QString& about, const QString& text, const QStringList& differences,
                              const std::function<void()>& again) {
  if (text.isEmpty()) return verification_->forget(about);
  if (text.startsWith(kVerifying)) return verification_->show_under_way({about, text});
  take_read_back({about, text, differences, text.startsWith(kVerified), again});
}

/// The pane shows the last one; all are listed among the messages.
void CMainFrame::take_read_back(ReadBackResult found) {
  view_.remember(found.verified ? StatusRank::outcome : StatusRank::failure, from_qt(found.about),
                 from_qt(found.about + ": " + found.text));
  verification_->show_result(std::move(found));
  show_messages();
}

void CMainFrame::fit_to_screen() {
  setGeometry(place_on_screen(kUsualSize, screen()->availableGeometry(), kUsualFrame));
}

void CMainFrame::keep_on_screen() {
  if (isMaximized() || isFullScreen()) return;
  const QRect available = screen()->availableGeometry();
  if (available.contains(frameGeometry())) return;
  const QWindow* window = windowHandle();
  setGeometry(place_on_screen(size(), available, window ? window->frameMargins() : kUsualFrame));
}

void CMainFrame::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (event->spontaneous()) return;
  // By then the window system has told what it put around the window. Who made it larger meanwhile wants it
  // so.
  QTimer::singleShot(kFrameKnown, this, [this, shown = size()] {
    if (size() == shown) keep_on_screen();
  });
}

void CMainFrame::show_messages() {
  messages_->show_messages(view_.board());
  if (list_ && list_->isVisible()) list_->show_messages(view_.board());
}

void CMainFrame::list_messages() {
  if (!list_) list_ = new MessageList(this);
  list_->show_messages(view_.board());
  list_->show();
  list_->raise();
  list_->activateWindow();
  view_.mark_read();
}

void CMainFrame::show_progress(std::optional<int> percent) {
  progress_->setVisible(percent.has_value());
  if (percent) progress_->setValue(*percent);
}

void CMainFrame::show_connected(bool connected) {
  connection_->show_connected(connected);
}

bool CMainFrame::event(QEvent* event) {
  if (event->type() != QEvent::StatusTip) return QMainWindow::event(event);
  const QString tip = static_cast<QStatusTipEvent*>(event)->tip();
  QAction* item = menuBar()->activeAction();
  if (tip.isEmpty() || !item) {
    QToolTip::hideText();
  } else {
    QToolTip::showText(menuBar()->mapToGlobal(menuBar()->actionGeometry(item).bottomLeft()), tip, menuBar());
  }
  return true;
}

void CMainFrame::closeEvent(QCloseEvent* event) {
  // The process ends by itself once the user has answered.
  event->ignore();
  view_.request_exit();
}

}  // namespace qv5123
