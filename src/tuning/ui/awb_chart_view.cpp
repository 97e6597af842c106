#include "tuning/ui/awb_chart_view.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace qv5123 {
namespace {

/// Around the frame, so that its line and what lies on it stay whole.
constexpr double kMargin = 10;
constexpr double kSide = 2 * (kAwbChartHalf + kMargin);
constexpr double kTextSize = 11;
/// How near to a patch's middle the mouse names it.
constexpr double kReach = 6;

// The patches have to stand out from it, and the lines' colours.
constexpr QRgb kBackground = qRgb(0xC4, 0xC4, 0xC4);
constexpr QRgb kDarkBackground = qRgb(0x30, 0x30, 0x30);
/// From tick to tick of the axes, in Cb/Y and Cr/Y.
constexpr double kTick = 0.25;
constexpr double kArrow = 7;
/// Where the numbers on the left begin: beside the letter of a line that begins at the edge.
constexpr double kScaleLeft = 8 - kAwbChartHalf;
/// Where a patch beyond the frame is told of, from the middle.
constexpr double kEdge = kAwbChartHalf - kArrow;

QPointF qt_point(ChartPoint point) {
  return {point.x, point.y};
}

/// `at` is the text's upper left corner.
void draw_text(QPainter& painter, ChartPoint at, const QString& text) {
  painter.drawText(QRectF(at.x, at.y, kAwbChartHalf, 2 * kTextSize), Qt::AlignLeft | Qt::AlignTop, text);
}

/// `form` has places for name, counts and the two ratios.
QString patch_text(const char* form, const ChartPatch& patch, const PatchColour& measured) {
  return QString(form)
      .arg(kAwbPatches[patch.row].caption)
      .arg(measured.r)
      .arg(measured.g)
      .arg(measured.b)
      .arg(patch.centre.x / kAwbChartScale, 0, 'f', 3)
      .arg(-patch.centre.y / kAwbChartScale, 0, 'f', 3);
}

QRectF frame_rect() {
  return {-kAwbChartHalf, -kAwbChartHalf, 2 * kAwbChartHalf, 2 * kAwbChartHalf};
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
  setToolTip(
      "Point at a patch, or go to it with the left and right keys, for its name and numbers. The wheel or + "
      "enlarges, 0 shows all again, a click on a line's letter or the key of its number hides it, Ctrl+C "
      "copies.");
  setFocusPolicy(Qt::StrongFocus);
  add_chart_menu(
      this, [this] { return numbers(); },
      [this](int notches) {
        zoom_.step(notches);
        update();
      });
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

QTransform AwbChartView::whole() const {
  const double scale = std::min(width(), height()) / kSide;
  return QTransform::fromTranslate(width() / 2.0, height() / 2.0).scale(scale, scale);
}

QTransform AwbChartView::transform() const {
  return zoom_.transform(frame_rect()) * whole();
}

QPointF AwbChartView::shown_place(const ChartPatch& patch) const {
  const QPointF at = zoom_.transform(frame_rect()).map(qt_point(patch.centre));
  const double beyond = std::max(std::abs(at.x()), std::abs(at.y())) / kEdge;
  return beyond > 1 ? at / beyond : at;
}

QColor AwbChartView::text_colour() const {
  return chart_colours(palette()).plot.lightness() < 128 ? Qt::white : Qt::black;
}

QColor AwbChartView::background() const {
  return QColor(text_colour() == Qt::white ? kDarkBackground : kBackground);
}

QColor AwbChartView::colour_of(ChartPen pen) const {
  static constexpr std::array<QRgb, 3> kColours{qRgb(0, 160, 0), qRgb(0, 0, 255), qRgb(255, 0, 0)};
  return readable_on(background(), QColor(kColours[static_cast<std::size_t>(pen)]));
}

QString AwbChartView::numbers() const {
  QString text = "Line\tSlope\tIntercept\n";
  for (const AwbRow& row : kAwbRows) {
    text += row.name;
    for (std::size_t i = 0; i < row.word_count; ++i)
      text += QString("\t%1").arg(values_.words[row.first_word + i]);
    text += '\n';
  }
  text += "Patch\tR\tG\tB\tCb/Y\tCr/Y\n";
  for (const ChartPatch& patch : patches_)
    text += patch_text("%1\t%2\t%3\t%4\t%5\t%6\n", patch, values_.patches[patch.row]);
  return text;
}

QPointF AwbChartView::to_widget(ChartPoint point) const {
  return transform().map(qt_point(point));
}

QString AwbChartView::text_at(QPointF point) const {
  const QPointF at = whole().inverted().map(point);
  const ChartPatch* nearest = nullptr;
  double least = kReach;
  for (const ChartPatch& patch : patches_) {
    const QPointF place = shown_place(patch);
    const double distance = std::hypot(place.x() - at.x(), place.y() - at.y());
    if (distance > least) continue;
    least = distance;
    nearest = &patch;
  }
  return nearest ? text_of(*nearest) : QString();
}

QString AwbChartView::text_of(const ChartPatch& patch) const {
  return patch_text("%1: R %2, G %3, B %4\nCb/Y = %5, Cr/Y = %6", patch, values_.patches[patch.row]);
}

bool AwbChartView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const QString patch = text_at(help->pos());
  QToolTip::showText(help->globalPos(), patch.isEmpty() ? toolTip() : patch, this);
  return true;
}

void AwbChartView::keyPressEvent(QKeyEvent* event) {
  if (legend_.press(event->key())) return update();
  const int step = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
  if (step == 0 || patches_.empty()) return QWidget::keyPressEvent(event);
  const int last = static_cast<int>(patches_.size()) - 1;
  told_ = std::clamp(told_ + step, 0, last);
  const ChartPatch& patch = patches_[static_cast<std::size_t>(told_)];
  setAccessibleDescription(text_of(patch));
  QToolTip::showText(mapToGlobal(whole().map(shown_place(patch)).toPoint()), text_of(patch), this);
}

void AwbChartView::wheelEvent(QWheelEvent* event) {
  if (zoom_.turn(*event, whole().mapRect(frame_rect()))) update();
}

void AwbChartView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && legend_.click(whole().inverted().map(event->position()))) update();
}

void AwbChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setTransform(whole());
  const QRectF area(-kSide / 2, -kSide / 2, kSide, kSide);
  painter.setClipRect(area);
  painter.fillRect(area, background());
  QFont text = font();
  text.setPixelSize(static_cast<int>(kTextSize));
  painter.setFont(text);
  paint_frame(painter);
  painter.save();
  painter.setClipRect(frame_rect());
  paint_lines(painter);
  paint_scale(painter);
  paint_patches(painter);
  paint_letters(painter);
  painter.restore();
  paint_legend(painter);
  if (hasFocus()) paint_focus(painter, area.adjusted(3, 3, -3, -3), text_colour());
}

void AwbChartView::paint_frame(QPainter& painter) const {
  painter.setPen(QPen(Qt::white, 1));
  painter.drawRect(frame_rect());
  const QPointF origin = zoom_.transform(frame_rect()).map(QPointF());
  painter.save();
  painter.setClipRect(frame_rect());
  painter.setPen(QPen(text_colour(), 2));
  painter.drawLine(QPointF(-kAwbChartHalf, origin.y()), QPointF(kAwbChartHalf, origin.y()));
  painter.drawLine(QPointF(origin.x(), -kAwbChartHalf), QPointF(origin.x(), kAwbChartHalf));
  painter.restore();
  painter.setPen(text_colour());
  for (const ChartText& text : kAwbChartTexts) draw_text(painter, text.at, text.text);
}

/// Along the left and the lower edge, where they stay while a part is enlarged; over the lines.
void AwbChartView::paint_scale(QPainter& painter) const {
  const QTransform zoomed = zoom_.transform(frame_rect());
  const double step = kTick / std::exp2(std::floor(std::log2(zoom_.factor())));
  const int decimals = step < kTick ? 4 : 2;
  painter.setPen(text_colour());
  const int ticks = static_cast<int>(std::lround(1 / step));
  for (int tick = -ticks; tick <= ticks; ++tick) {
    const double value = tick * step;
    const QPointF at = zoomed.map(QPointF(value, -value) * kAwbChartScale);
    const QString text = QString::number(value, 'f', decimals);
    if (std::abs(at.x()) < kEdge) {
      painter.drawLine(QPointF(at.x(), kAwbChartHalf - 4), QPointF(at.x(), kAwbChartHalf));
      draw_on(painter, QRectF(at.x() - 30, kAwbChartHalf - 4 - 2 * kTextSize, 60, 2 * kTextSize),
              Qt::AlignHCenter | Qt::AlignBottom, text, background());
    }
    if (std::abs(at.y()) < kEdge) {
      // What of a line is left beside the number would be its minus.
      painter.fillRect(
          QRectF(1 - kAwbChartHalf, at.y() - kTextSize / 2, kScaleLeft + kAwbChartHalf - 1, kTextSize),
          background());
      painter.drawLine(QPointF(-kAwbChartHalf, at.y()), QPointF(4 - kAwbChartHalf, at.y()));
      draw_on(painter, QRectF(kScaleLeft, at.y() - kTextSize, 60, 2 * kTextSize),
              Qt::AlignLeft | Qt::AlignVCenter, text, background());
    }
  }
}

void AwbChartView::paint_lines(QPainter& painter) const {
  const QTransform zoomed = zoom_.transform(frame_rect());
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (!legend_.shows(i)) continue;
    const ChartLine& line = lines_[i];
    painter.setPen(QPen(colour_of(line.pen), 2));
    painter.drawLine(zoomed.map(qt_point(line.from)), zoomed.map(qt_point(line.to)));
  }
}

void AwbChartView::paint_letters(QPainter& painter) const {
  const QTransform zoomed = zoom_.transform(frame_rect());
  std::vector<ChartPoint> patches;
  if (legend_.shows(lines_.size()))
    for (const ChartPatch& patch : patches_) {
      const QPointF at = shown_place(patch);
      patches.push_back({at.x(), at.y()});
    }
  painter.setPen(text_colour());
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (!legend_.shows(i)) continue;
    const QPointF letter = zoomed.map(qt_point(lines_[i].letter));
    const ChartPoint at = clear_of_patches(inside_frame({letter.x(), letter.y()}), kTextSize, patches);
    draw_text(painter, inside_frame(at), QString(QLatin1Char(lines_[i].name)));
  }
}

void AwbChartView::paint_patches(QPainter& painter) const {
  if (!legend_.shows(lines_.size())) return;
  const QTransform zoomed = zoom_.transform(frame_rect());
  for (const ChartPatch& patch : patches_) {
    const QPointF at = zoomed.map(qt_point(patch.centre));
    if (!frame_rect().contains(at)) {
      paint_arrow(painter, patch);
      continue;
    }
    const QRectF square(at - QPointF(patch.side / 2, patch.side / 2), QSizeF(patch.side, patch.side));
    painter.setPen(QPen(text_colour(), 1));
    painter.setBrush(QColor(patch.colour.r, patch.colour.g, patch.colour.b));
    // Around it, not on it.
    painter.drawRect(square.adjusted(-0.5, -0.5, 0.5, 0.5));
  }
}

void AwbChartView::paint_arrow(QPainter& painter, const ChartPatch& patch) const {
  const QPointF at = shown_place(patch);
  painter.save();
  painter.translate(at);
  painter.rotate(std::atan2(at.y(), at.x()) * 180 / std::numbers::pi);
  painter.setPen(QPen(text_colour(), 1));
  painter.setBrush(QColor(patch.colour.r, patch.colour.g, patch.colour.b));
  painter.drawPolygon(QPolygonF{{{kArrow, 0}, {-kArrow, -kArrow}, {-kArrow, kArrow}}});
  painter.restore();
}

void AwbChartView::paint_legend(QPainter& painter) {
  std::vector<ChartLegend::Entry> entries;
  for (const ChartLine& line : lines_)
    entries.push_back({QString(QLatin1Char(line.name)), colour_of(line.pen)});
  entries.push_back({"Patches", text_colour()});
  legend_.paint(painter, frame_rect().adjusted(4, 2, -4, 0), entries);
}

}  // namespace qv5123
