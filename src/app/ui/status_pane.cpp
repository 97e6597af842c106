#include "app/ui/status_pane.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <algorithm>

#include "base/ui/qt_text.h"
#include "console/status_board.h"

namespace qv5123 {
namespace {

QLabel* pane_label(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setAttribute(Qt::WA_TransparentForMouseEvents);
  // A long message is cut, it never widens the window.
  label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
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
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  setAccessibleName(QStringLiteral("No message"));
  setAccessibleDescription(QStringLiteral("Status messages. Press to list all of them."));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(2, 0, 2, 0);
  mark_ = new QLabel(this);
  const int side = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  mark_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(side));
  mark_->setAttribute(Qt::WA_TransparentForMouseEvents);
  failure_ = pane_label(this);
  failure_->setObjectName("failure");
  QFont bold = failure_->font();
  bold.setBold(true);
  failure_->setFont(bold);
  latest_ = pane_label(this);
  latest_->setObjectName("latest");
  row->addWidget(mark_);
  row->addWidget(failure_);
  row->addWidget(latest_, 1);
  lay_out();
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
  lines << QStringLiteral("Click to list all messages (Ctrl+Shift+M)");
  setToolTip(plain_tool_tip(lines.join(u'\n')));
  lay_out();
  if (!fails_anew) return;
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

// The failure has the room that it needs, but for a part that the latest message keeps.
void StatusPane::lay_out() {
  constexpr int kLatestPart = 4;
  const bool fails = !failure_->text().isEmpty();
  mark_->setVisible(fails);
  failure_->setVisible(fails);
  const int wanted = failure_->sizeHint().width();
  const int most = latest_->text().isEmpty() ? width() : width() - width() / kLatestPart;
  failure_->setFixedWidth(std::clamp(wanted, 1, std::max(most, 1)));
}

QSize StatusPane::sizeHint() const {
  return {0, layout()->sizeHint().height()};
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
