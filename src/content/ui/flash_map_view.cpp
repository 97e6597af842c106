#include "content/ui/flash_map_view.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "base/hex.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

constexpr int kQuarters = 4;
constexpr int kGap = 6;        // pixels, between texts, bars and quarters
constexpr int kNarrowest = 3;  // pixels of a part that is filled
constexpr std::size_t kQuarter = flash::kImageSize / kQuarters;

QString offset_text(std::size_t offset) {
  return "0x" + to_qt(upper_hex(static_cast<unsigned>(offset), 5));
}

int quarter_of(std::size_t offset) {
  return static_cast<int>(offset / kQuarter);
}

}  // namespace

FlashMapView::FlashMapView(QWidget* parent) : QWidget(parent) {
  setAccessibleName("Flash map");
  QSizePolicy place(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setSizePolicy(place);
}

void FlashMapView::show_look(FlashLook look) {
  look_ = std::move(look);
  setAccessibleDescription(lines());
  update();
}

QString FlashMapView::lines() const {
  QStringList lines;
  for (const FlashPlace& place : look_.places) lines << offset_text(place.offset) + " " + to_qt(place.text);
  for (const std::string& remark : look_.remarks) lines << to_qt(remark);
  return lines.join(u'\n');
}

QSize FlashMapView::minimumSizeHint() const {
  const int bar = fontMetrics().height();
  return {bar_left() + 40 * fontMetrics().averageCharWidth(),
          kQuarters * (fontMetrics().height() + bar + 2 * kGap)};
}

QSize FlashMapView::sizeHint() const {
  return minimumSizeHint() * 2;
}

int FlashMapView::bar_left() const {
  return fontMetrics().horizontalAdvance(offset_text(flash::kImageSize)) + 2 * kGap;
}

QRect FlashMapView::bar(int quarter) const {
  const int row_height = height() / kQuarters;
  const int top = quarter * row_height + fontMetrics().height() + kGap / 2;
  return {bar_left(), top, width() - bar_left() - 1, row_height - fontMetrics().height() - 2 * kGap};
}

QRect FlashMapView::part(std::size_t offset, std::size_t bytes) const {
  QRect place = bar(quarter_of(offset));
  const auto pixels = [&place](std::size_t count) {
    return static_cast<int>(static_cast<double>(count) * place.width() / kQuarter);
  };
  const int left = place.left() + pixels(offset % kQuarter);
  return {left, place.top(), std::max(pixels(bytes), kNarrowest), place.height()};
}

void FlashMapView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  for (int quarter = 0; quarter < kQuarters; ++quarter) paint_quarter(painter, quarter);
}

void FlashMapView::paint_quarter(QPainter& painter, int quarter) const {
  const QRect whole = bar(quarter);
  // Stands out from the base in dark colors too, where the shades of buttons do not.
  const QColor faint = palette().color(QPalette::Disabled, QPalette::Text);
  painter.fillRect(whole, palette().color(QPalette::Base));
  painter.fillRect(whole, QBrush(faint, Qt::BDiagPattern));
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(0, whole.center().y() + fontMetrics().ascent() / 2,
                   offset_text(static_cast<std::size_t>(quarter) * kQuarter));
  QString text;
  for (const FlashPlace& place : look_.places) {
    if (quarter_of(place.offset) != quarter) continue;
    // What is told in full of the first place is short for its pieces.
    if (text.isEmpty()) text = to_qt(place.text);
    const QRect room = part(place.offset, place.size);
    if (place.filled > 0)
      painter.fillRect(part(place.offset, place.filled), palette().color(QPalette::Highlight));
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawRect(room.adjusted(0, 0, -1, -1));
  }
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(whole.left(), whole.top() - kGap / 2 - fontMetrics().descent(),
                   fontMetrics().elidedText(text, Qt::ElideMiddle, whole.width()));
  painter.setPen(faint);
  painter.drawRect(whole.adjusted(0, 0, -1, -1));
}

bool FlashMapView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  for (const FlashPlace& place : look_.places) {
    if (!part(place.offset, place.size).contains(help->pos())) continue;
    QToolTip::showText(help->globalPos(), plain_tool_tip(offset_text(place.offset) + " " + to_qt(place.text)),
                       this);
    return true;
  }
  QToolTip::hideText();
  return true;
}

}  // namespace qv5123
