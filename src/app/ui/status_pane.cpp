#include "app/ui/status_pane.h"

#include <QAccessible>
#include <QLabel>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <algorithm>

#include "base/ui/qt_text.h"
#include "console/status_board.h"

namespace qv5123 {
namespace {

constexpr const char* kHowToList = "Click to list all messages (Ctrl+Shift+M)";
constexpr int kSpace = 4;
/// The latest message keeps a quarter beside a failure.
constexpr int kLatestPart = 4;

QLabel* pane_label(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setAttribute(Qt::WA_TransparentForMouseEvents);
  return label;
}

/// The last failure, and how many others stand behind it.
QString failure_text(const StatusBoard& board) {
  const auto& failures = board.failures();
  if (failures.empty()) return {};
  const QString last = to_qt(failures.back().text);
  return failures.size() == 1 ? last : QStringLiteral("%1  (+%2)").arg(last).arg(failures.size() - 1);
}

}  // namespace

StatusPane::StatusPane(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::TabFocus);
  // A long message is cut, it never widens the window.
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  setAccessibleName(QStringLiteral("No message"));
  setToolTip(QLatin1String(kHowToList));
  setAccessibleDescription(QStringLiteral("Status messages. Press to list all of them."));
  mark_ = new QLabel(this);
  const int side = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  mark_->setFixedSize(side, side);
  mark_->setAttribute(Qt::WA_TransparentForMouseEvents);
  failure_ = pane_label(this);
  failure_->setObjectName("failure");
  latest_ = pane_label(this);
  latest_->setObjectName("latest");
}

// Not before it is needed: an icon is looked for in the desktop's themes, and a bold font is one more to
// load, which would be a fifth of all that a start takes.
void StatusPane::make_mark() {
  mark_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(mark_->size()));
  QFont bold = failure_->font();
  bold.setBold(true);
  failure_->setFont(bold);
}

void StatusPane::show_messages(const StatusBoard& board) {
  const QString failure = failure_text(board);
  const bool fails_anew = !failure.isEmpty() && failure != failure_->text();
  failure_->setText(failure);
  latest_->setText(to_qt(board.latest()));
  QStringList lines;
  for (const StatusMessage& message : board.failures()) lines.prepend(to_qt(message.text));
  if (!board.latest().empty()) lines << latest_->text();
  setAccessibleName(lines.isEmpty() ? QStringLiteral("No message") : lines.join(u'\n'));
  lines << QLatin1String(kHowToList);
  setToolTip(plain_tool_tip(lines.join(u'\n')));
  lay_out();
  if (!fails_anew) return;
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

// The failure has the room that it needs, but for a part that the latest message keeps.
void StatusPane::lay_out() {
  const bool fails = !failure_->text().isEmpty();
  if (fails && mark_->pixmap().isNull()) make_mark();
  mark_->setVisible(fails);
  failure_->setVisible(fails);
  int at = kSpace;
  if (fails) {
    mark_->move(at, (height() - mark_->height()) / 2);
    at = mark_->geometry().right() + kSpace;
    const int most = latest_->text().isEmpty() ? width() : width() - width() / kLatestPart;
    failure_->setGeometry(at, 0, std::clamp(failure_->sizeHint().width(), 0, std::max(most - at, 0)),
                          height());
    at = failure_->geometry().right() + 3 * kSpace;
  }
  latest_->setGeometry(at, 0, std::max(width() - at, 0), height());
}

QSize StatusPane::sizeHint() const {
  return {0, std::max(mark_->height(), latest_->sizeHint().height())};
}

void StatusPane::resizeEvent(QResizeEvent* event) {
  QAbstractButton::resizeEvent(event);
  lay_out();
}

void StatusPane::paintEvent(QPaintEvent*) {
  if (!hasFocus()) return;
  QStylePainter painter(this);
  QStyleOptionFocusRect option;
  option.initFrom(this);
  painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
}

}  // namespace qv5123
