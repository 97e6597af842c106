#include "app/ui/message_list.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
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

// What is chosen stays so, and what is looked at stays in sight.
void MessageList::show_messages(const StatusBoard& board) {
  const QScrollBar& bar = *list_->verticalScrollBar();
  const bool at_end = bar.value() == bar.maximum();
  for (; forgotten_ < board.forgotten(); ++forgotten_) delete list_->takeItem(0);
  // The last line may have been said again.
  const int count = static_cast<int>(board.history().size());
  for (int row = std::max(list_->count() - 1, 0); row < count; ++row)
    show_line(row, board.history()[static_cast<std::size_t>(row)]);
  if (!isVisible()) list_->setCurrentRow(count - 1);
  if (!isVisible() || at_end) list_->scrollToBottom();
}

void MessageList::show_line(int row, const StatusMessage& message) {
  if (row == list_->count()) new QListWidgetItem(list_);
  list_->item(row)->setText(line_of(message));
  if (message.rank == StatusRank::failure)
    list_->item(row)->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this));
}

void MessageList::copy_chosen() const {
  QStringList lines;
  for (int row = 0; row < list_->count(); ++row) {
    if (list_->item(row)->isSelected()) lines << list_->item(row)->text();
  }
  QApplication::clipboard()->setText(lines.join(u'\n'));
}

}  // namespace qv5123
