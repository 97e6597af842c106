#include "tuning/ui/awb_chart_view.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace qv5123 {
namespace {

/// Around the frame, so that its line and what lies on it stay whole.
constexpr double kMargin = 10;
constexpr double kSide = 2 * (kAwbChartHalf + kMargin);
constexpr double kTextSize = 11;
/// How near to a patch's middle the mouse names it.
constexpr double kReach = 6;

// Everything drawn, the white frame and the black axes alike, has to stand out from it.
constexpr QRgb kBackground = qRgb(0xC4, 0xC4, 0xC4);

QColor colour_of(ChartPen pen) {
  switch (pen) {
    case ChartPen::green:
      return {0, 160, 0};
    case ChartPen::blue:
      return {0, 0, 255};
    case ChartPen::red:
      break;
  }
  return {255, 0, 0};
}

QPointF qt_point(ChartPoint point) {
  return {point.x, point.y};
}

/// `at` is the text's upper left corner.
void draw_text(QPainter& painter, ChartPoint at, const QString& text) {
  painter.drawText(QRectF(at.x, at.y, kAwbChartHalf, 2 * kTextSize), Qt::AlignLeft | Qt::AlignTop, text);
}

QString patch_text(const ChartPatch& patch, const PatchColour& measured) {
  return QString("%1: R %2, G %3, B %4\nCb/Y = %5, Cr/Y = %6")
      .arg(kAwbPatches[patch.row].caption)
      .arg(measured.r)
      .arg(measured.g)
      .arg(measured.b)
      .arg(patch.centre.x / kAwbChartScale, 0, 'f', 3)
      .arg(-patch.centre.y / kAwbChartScale, 0, 'f', 3);
}

/// The letter of a line that begins outside the frame stays readable at its edge.
ChartPoint inside_frame(ChartPoint at) {
  at.x = std::clamp(at.x, -kAwbChartHalf, kAwbChartHalf - kTextSize);
  at.y = std::clamp(at.y, -kAwbChartHalf, kAwbChartHalf - kTextSize);
  return at;
}

}  // namespace

AwbChartView::AwbChartView(QWidget* parent) : QWidget(parent) {
  setAccessibleName("White detection chart");
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  show_values(AwbValues{});
}

void AwbChartView::show_values(const AwbValues& values) {
  values_ = values;
  lines_ = awb_chart_lines(values);
  patches_ = awb_chart_patches(values);
  setAccessibleDescription(QString("Lines A to F and %1 measured patches").arg(patches_.size()));
  update();
}

QTransform AwbChartView::transform() const {
  const double scale = std::min(width(), height()) / kSide;
  return QTransform::fromTranslate(width() / 2.0, height() / 2.0).scale(scale, scale);
}

QPointF AwbChartView::to_widget(ChartPoint point) const {
  return transform().map(qt_point(point));
}

QString AwbChartView::text_at(QPointF point) const {
  const QPointF at = transform().inverted().map(point);
  const ChartPatch* nearest = nullptr;
  double least = kReach;
  for (const ChartPatch& patch : patches_) {
    const double distance = std::hypot(patch.centre.x - at.x(), patch.centre.y - at.y());
    if (distance > least) continue;
    least = distance;
    nearest = &patch;
  }
  return nearest ? patch_text(*nearest, values_.patches[nearest->row]) : QString();
}

bool AwbChartView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  QToolTip::showText(help->globalPos(), text_at(help->pos()), this);
  return true;
}

void AwbChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setTransform(transform());
  const QRectF area(-kSide / 2, -kSide / 2, kSide, kSide);
  painter.setClipRect(area);
  painter.fillRect(area, QColor(kBackground));
  QFont text = font();
  text.setPixelSize(static_cast<int>(kTextSize));
  painter.setFont(text);
  paint_frame(painter);
  paint_lines(painter);
  paint_patches(painter);
}

void AwbChartView::paint_frame(QPainter& painter) const {
  painter.setPen(QPen(Qt::white, 1));
  painter.drawRect(QRectF(-kAwbChartHalf, -kAwbChartHalf, 2 * kAwbChartHalf, 2 * kAwbChartHalf));
  painter.setPen(Qt::black);
  for (const ChartText& text : kAwbChartTexts) draw_text(painter, text.at, text.text);
  painter.setPen(QPen(Qt::black, 2));
  painter.drawLine(QPointF(-kAwbChartHalf, 0), QPointF(kAwbChartHalf, 0));
  painter.drawLine(QPointF(0, -kAwbChartHalf), QPointF(0, kAwbChartHalf));
}

void AwbChartView::paint_lines(QPainter& painter) const {
  for (const ChartLine& line : lines_) {
    painter.setPen(QPen(colour_of(line.pen), 2));
    painter.drawLine(qt_point(line.from), qt_point(line.to));
    painter.setPen(Qt::black);
    draw_text(painter, inside_frame(line.letter), QString(QLatin1Char(line.name)));
  }
}

void AwbChartView::paint_patches(QPainter& painter) const {
  for (const ChartPatch& patch : patches_) {
    const QPointF corner = qt_point(patch.centre) - QPointF(patch.side / 2, patch.side / 2);
    painter.fillRect(QRectF(corner, QSizeF(patch.side, patch.side)),
                     QColor(patch.colour.r, patch.colour.g, patch.colour.b));
  }
}

}  // namespace qv5123
