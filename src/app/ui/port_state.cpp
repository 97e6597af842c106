#include "app/ui/port_state.h"

#include <QHelpEvent>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <QToolTip>

#include "base/ui/qt_text.h"
#include "link/ui/link_health_dialog.h"

namespace qv5123 {
namespace {

constexpr const char* kHowToOpen = "Click for a window with these figures";
constexpr int kSpace = 2;

}  // namespace

PortState::PortState(QWidget* parent) : QAbstractButton(parent) {
  setObjectName("port-state");
  setFocusPolicy(Qt::TabFocus);
  setToolTip(kHowToOpen);
  setAccessibleDescription("Port state. Press to see how the line does.");
  connect(this, &QAbstractButton::clicked, this, &PortState::open_dialog);
}

void PortState::show_connected(bool connected) {
  setText(connected ? "Port open" : "Port closed");
  // What assistive tools read out.
  setAccessibleName(text());
  updateGeometry();
}

void PortState::open_dialog() {
  if (!report_) return;
  if (!dialog_) dialog_ = new LinkHealthDialog(report_, window());
  dialog_->show();
  dialog_->raise();
  dialog_->activateWindow();
}

QSize PortState::sizeHint() const {
  return fontMetrics().size(Qt::TextSingleLine, text()) + QSize(2 * kSpace, 0);
}

// The figures of the moment, not those of when the port was opened.
bool PortState::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || !report_) return QAbstractButton::event(event);
  const QString text = to_qt(report_text(report_()));
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                     plain_tool_tip(text.trimmed() + u'\n' + QLatin1String(kHowToOpen)), this);
  return true;
}

void PortState::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  painter.drawItemText(rect(), Qt::AlignCenter, palette(), isEnabled(), text(), foregroundRole());
  if (!hasFocus()) return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
}

}  // namespace qv5123
