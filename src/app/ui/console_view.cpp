#include "app/ui/console_view.h"

#include <QElapsedTimer>
#include <QFontDatabase>
#include <QScrollBar>
#include <QTextBlock>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

/// A fifth of a frame, which leaves the rest for layout and painting.
constexpr qint64 kSliceMs = 3;
constexpr qsizetype kStep = 256;
/// A window that is never painted, for it is minimized from the start, is not waited for with more than that.
constexpr qsizetype kMostUnpainted = 64 * 1024;
/// State of a block that goes on with the line of the block before it.
constexpr int kContinued = 1;

}  // namespace

ConsoleView::ConsoleView(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setUndoRedoEnabled(false);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

/// The window stands before the text that came meanwhile, and before its font, which is one more to load.
void ConsoleView::paintEvent(QPaintEvent* event) {
  QPlainTextEdit::paintEvent(event);
  // Behind the whole of the picture: what is posted would come before it has been shown.
  if (!std::exchange(painted_, true)) QTimer::singleShot(0, this, [this] { request_turn(); });
}

void ConsoleView::apply(const ConsoleChange& change) {
  if (change.cleared) clear_text();
  to_drop_ += change.dropped;
  queued_ += to_qt(change.appended);
  request_turn();
}

void ConsoleView::clear_text() {
  queued_.clear();
  shown_ = 0;
  to_drop_ = 0;
  column_ = 0;
  clear();
}

void ConsoleView::request_turn() {
  if (turn_requested_ || settled()) return;
  turn_requested_ = true;
  const auto turn = [this] {
    turn_requested_ = false;
    show_slice();
  };
  QMetaObject::invokeMethod(this, turn, Qt::QueuedConnection);
}

void ConsoleView::show_slice() {
  if (isVisible() && !painted_ && queued_.size() < kMostUnpainted) return;
  if (!std::exchange(has_font_, true)) setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  QElapsedTimer slice;
  slice.start();
  while (to_drop_ > 0 && slice.elapsed() < kSliceMs) drop_some();
  while (shown_ < queued_.size() && slice.elapsed() < kSliceMs) append_some();
  forget_shown();
  verticalScrollBar()->setValue(verticalScrollBar()->maximum());
  request_turn();
}

// By halves, so that under a steady stream the queue neither grows nor is moved for every slice.
void ConsoleView::forget_shown() {
  if (shown_ <= queued_.size() / 2) return;
  queued_.remove(0, shown_);
  shown_ = 0;
}

void ConsoleView::append_some() {
  QTextCursor cursor(document());
  cursor.movePosition(QTextCursor::End);
  const bool ends_here = queued_[shown_] == u'\n';
  if (column_ >= kLongestLine && !ends_here) break_line(cursor);
  const qsizetype room = std::clamp<qsizetype>(kLongestLine - column_, 1, kStep);
  QStringView piece = QStringView(queued_).sliced(shown_, std::min(room, queued_.size() - shown_));
  const qsizetype last_end = piece.lastIndexOf(u'\n');
  cursor.insertText(piece.toString());
  shown_ += piece.size();
  column_ = static_cast<int>(last_end < 0 ? column_ + piece.size() : piece.size() - 1 - last_end);
}

void ConsoleView::break_line(QTextCursor& cursor) {
  cursor.insertBlock();
  cursor.block().setUserState(kContinued);
  column_ = 0;
}

void ConsoleView::drop_some() {
  QTextCursor cursor(document());
  if (document()->characterCount() > 1) {
    drop_blocks(cursor);
    return;
  }
  // The rest is not shown yet.
  const auto unseen = static_cast<std::size_t>(queued_.size() - shown_);
  shown_ += static_cast<qsizetype>(std::min(to_drop_, unseen));
  to_drop_ = 0;
}

void ConsoleView::drop_blocks(QTextCursor& cursor) {
  qsizetype taken = 0;
  while (to_drop_ > 0 && taken < kStep && !cursor.atEnd()) {
    const QTextBlock block = cursor.block();
    const auto length = static_cast<std::size_t>(block.length() - 1);
    if (to_drop_ <= length || !block.next().isValid()) {
      const std::size_t part = std::min(to_drop_, length);
      cursor.setPosition(block.position() + static_cast<int>(part), QTextCursor::KeepAnchor);
      to_drop_ -= part;
      break;
    }
    // A break of this view's own is no position of the text.
    const std::size_t line_end = block.next().userState() == kContinued ? 0 : 1;
    cursor.setPosition(block.next().position(), QTextCursor::KeepAnchor);
    taken += block.length();
    to_drop_ -= std::min(to_drop_, length + line_end);
  }
  cursor.removeSelectedText();
}

}  // namespace qv5123
