#include "app/ui/message_list.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QStyle>
#include <QVBoxLayout>
#include <chrono>

#include "base/ui/qt_text.h"
#include "console/status_board.h"

namespace qv5123 {
namespace {

constexpr QSize kUsualSize{640, 360};

QString line_of(const StatusMessage& message) {
  const auto since = std::chrono::floor<std::chrono::milliseconds>(message.time.time_since_epoch());
  QString line = QDateTime::fromMSecsSinceEpoch(since.count()).toString("HH:mm:ss  ");
  if (message.rank == StatusRank::failure) line += QStringLiteral("Failed: ");
  line += to_qt(message.text);
  if (message.times > 1) line += QStringLiteral(" (%1 times)").arg(message.times);
  return line;
}

}  // namespace

MessageList::MessageList(QWidget* parent) : QDialog(parent) {
  setWindowTitle(QStringLiteral("Messages"));
  resize(kUsualSize);
  list_ = new QListWidget(this);
  list_->setAccessibleName(QStringLiteral("Messages"));
  list_->setToolTip(QStringLiteral(
      "What the status bar said, the last at the end. Ctrl+C copies the lines that are chosen."));
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setWordWrap(true);
  auto* copy = new QAction(QStringLiteral("Copy"), this);
  copy->setShortcut(QKeySequence::Copy);
  connect(copy, &QAction::triggered, this, &MessageList::copy_chosen);
  list_->addAction(copy);
  list_->setContextMenuPolicy(Qt::ActionsContextMenu);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(list_);
  rows->addWidget(buttons);
}

void MessageList::show_messages(const StatusBoard& board) {
  if (board.history().empty() || board.history().back().time == shown_until_) return;
  shown_until_ = board.history().back().time;
  const QIcon failed = style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this);
  list_->clear();
  for (const StatusMessage& message : board.history()) {
    auto* item = new QListWidgetItem(line_of(message), list_);
    if (message.rank == StatusRank::failure) item->setIcon(failed);
  }
  list_->setCurrentRow(list_->count() - 1);
  list_->scrollToBottom();
}

void MessageList::copy_chosen() const {
  QStringList lines;
  for (int row = 0; row < list_->count(); ++row) {
    if (list_->item(row)->isSelected()) lines << list_->item(row)->text();
  }
  QApplication::clipboard()->setText(lines.join(u'\n'));
}

}  // namespace qv5123
