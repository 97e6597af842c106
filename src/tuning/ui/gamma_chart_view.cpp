#include "tuning/ui/gamma_chart_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/saturate.h"

namespace qv5123 {
namespace {

/// Height of the position labels, which stand upright, and so the least distance between two.
constexpr int kLabelSize = 8;
constexpr int kReadoutSize = 11;
constexpr int kPageStep = 16;

QColor colour_of(GammaCurveId id) {
  constexpr Qt::GlobalColor kColours[] = {Qt::red, Qt::green, Qt::blue, Qt::black};
  return kColours[static_cast<std::size_t>(id)];
}

QRectF rect_of(const ChartBox& box) {
  return {QPointF(box.left, box.top), QPointF(box.right, box.bottom)};
}

QPointF point_of(ChartPixel pixel) {
  return {static_cast<double>(pixel.x), static_cast<double>(pixel.y)};
}

QFont sized(QFont font, int pixels) {
  font.setPixelSize(pixels);
  return font;
}

/// Where the label of each position stands: below it, or as far to the right as the one before demands.
GammaCurve label_places() {
  GammaCurve places{};
  int next = 0;
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    places[i] = std::max(gamma_pixel(kGammaPositions[i], 0).x, next);
    next = places[i] + kLabelSize;
  }
  return places;
}

}  // namespace

GammaChartView::GammaChartView(const GammaValues& values) : values_(values) {
  setAccessibleName("Gamma curves");
  setToolTip("Drag the points, or choose one with the left and right keys and move it with up and down");
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

bool GammaChartView::event(QEvent* event) {
  // It would cover what the readout tells of.
  if (event->type() == QEvent::ToolTip && !readout().isEmpty()) {
    event->ignore();
    return true;
  }
  return QWidget::event(event);
}

QTransform GammaChartView::transform() const {
  const QRectF frame = rect_of(kGammaFrame).adjusted(-1, -1, 1, 1);
  const double scale = std::min(width() / frame.width(), height() / frame.height());
  QTransform transform = QTransform::fromTranslate(width() / 2.0, height() / 2.0);
  transform.scale(scale, scale);
  return transform.translate(-frame.center().x(), -frame.center().y());
}

QPointF GammaChartView::to_widget(ChartPixel pixel) const {
  return transform().map(point_of(pixel));
}

ChartPixel GammaChartView::to_chart(QPointF point) const {
  const QPointF at = transform().inverted().map(point);
  return {saturate_to_int(std::round(at.x())), saturate_to_int(std::round(at.y()))};
}

QString GammaChartView::readout() const {
  const std::optional<GammaHit>& hit = hovered_ ? hovered_ : chosen_;
  if (!hit) return {};
  QString text = QString("Point %1 at %2:").arg(hit->point + 1).arg(kGammaPositions[hit->point]);
  for (GammaCurveId id : hit->curves) {
    text += QString("  %1 = %2")
                .arg(kGammaCurveNames[static_cast<std::size_t>(id)])
                .arg(values_.curve(id)[hit->point]);
  }
  return text;
}

void GammaChartView::refresh() {
  const std::vector<GammaCurveId> shown = selected_curves(values_.channel);
  for (std::optional<GammaHit>* hit : {&hovered_, &chosen_}) {
    if (!*hit) continue;
    std::erase_if((*hit)->curves,
                  [&](GammaCurveId id) { return std::find(shown.begin(), shown.end(), id) == shown.end(); });
    if ((*hit)->curves.empty()) hit->reset();
  }
  setAccessibleDescription(readout());
  update();
}

void GammaChartView::hover(std::optional<GammaHit> hit) {
  if (hit == hovered_) return;
  hovered_ = std::move(hit);
  setCursor(hovered_ ? Qt::SizeVerCursor : Qt::ArrowCursor);
  refresh();
}

void GammaChartView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  chosen_ = nearest_gamma_point(values_, to_chart(event->position()));
  hovered_.reset();
  dragging_ = chosen_.has_value();
  refresh();
}

void GammaChartView::mouseMoveEvent(QMouseEvent* event) {
  const ChartPixel at = to_chart(event->position());
  if (!dragging_ || !chosen_) return hover(nearest_gamma_point(values_, at));
  emit point_dragged(*chosen_, gamma_value_at(at.y));
}

void GammaChartView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !std::exchange(dragging_, false)) return;
  emit drag_ended();
}

void GammaChartView::leaveEvent(QEvent*) {
  hover(std::nullopt);
}

void GammaChartView::choose_neighbour(int step) {
  hovered_.reset();
  if (!chosen_) {
    chosen_ = GammaHit{0, selected_curves(values_.channel)};
  } else {
    const int last = static_cast<int>(kGammaPoints) - 1;
    chosen_->point = static_cast<std::size_t>(std::clamp(static_cast<int>(chosen_->point) + step, 0, last));
  }
  refresh();
}

void GammaChartView::keyPressEvent(QKeyEvent* event) {
  const auto nudge = [this](int delta) {
    if (!chosen_) return choose_neighbour(0);
    emit point_nudged(*chosen_, delta);
  };
  switch (event->key()) {
    case Qt::Key_Left:
      return choose_neighbour(-1);
    case Qt::Key_Right:
      return choose_neighbour(1);
    case Qt::Key_Up:
      return nudge(1);
    case Qt::Key_Down:
      return nudge(-1);
    case Qt::Key_PageUp:
      return nudge(kPageStep);
    case Qt::Key_PageDown:
      return nudge(-kPageStep);
    default:
      QWidget::keyPressEvent(event);
  }
}

void GammaChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paint_background(painter);
  painter.setTransform(transform());
  painter.setRenderHint(QPainter::Antialiasing);
  paint_curve(painter, GammaCurveId::front);
  for (GammaCurveId id : selected_curves(values_.channel)) {
    if (id != GammaCurveId::front) paint_curve(painter, id);
  }
  paint_chosen(painter);
  if (hasFocus()) paint_focus(painter);
}

/// It stays while the points move, and takes longer to paint than they do.
void GammaChartView::paint_background(QPainter& painter) {
  const QSize pixels = size() * devicePixelRatio();
  if (background_.size() != pixels || background_font_ != font()) {
    background_ = QPixmap(pixels);
    background_.setDevicePixelRatio(devicePixelRatio());
    background_.fill(Qt::transparent);
    background_font_ = font();
    QPainter behind(&background_);
    behind.setTransform(transform());
    paint_frame(behind);
    paint_grid(behind);
    paint_labels(behind);
  }
  painter.drawPixmap(0, 0, background_);
}

void GammaChartView::paint_frame(QPainter& painter) const {
  const QRectF frame = rect_of(kGammaFrame);
  painter.fillRect(frame, QColor(0xFA, 0xFA, 0xFA));
  painter.fillRect(rect_of(kGammaPlot), Qt::white);
  painter.setPen(QPen(Qt::darkGray, 1));
  painter.drawRect(frame);
  painter.setPen(QPen(Qt::white, 1));
  painter.drawRect(frame.adjusted(1, 1, -1, -1));
  painter.setPen(QPen(Qt::gray, 1));
  painter.drawRect(rect_of(kGammaPlot));
}

void GammaChartView::paint_grid(QPainter& painter) const {
  painter.setPen(QPen(QColor(kGammaGridColour), 1, Qt::DotLine));
  for (int position : kGammaPositions) {
    const int x = gamma_pixel(position, 0).x;
    painter.drawLine(x, kGammaPlot.bottom, x, kGammaPlot.top);
  }
}

void GammaChartView::paint_labels(QPainter& painter) const {
  painter.setFont(sized(font(), kLabelSize));
  const GammaCurve places = label_places();
  // Short of the frame also where a small font is drawn wider than it measures.
  constexpr double room = kGammaFrame.bottom - kGammaLabelY - 5;
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    painter.setPen(QPen(Qt::gray, 0));
    painter.drawLine(gamma_pixel(kGammaPositions[i], 0).x, kGammaPlot.bottom, places[i], kGammaLabelY - 1);
    painter.setPen(Qt::black);
    painter.save();
    painter.translate(places[i], kGammaLabelY);
    painter.rotate(90);
    const QString text = QString::number(kGammaPositions[i]);
    // Four digits of some fonts are longer than the margin.
    const double width = painter.fontMetrics().horizontalAdvance(text);
    painter.scale(std::min(1.0, room / width), 1);
    painter.drawText(QRectF(0, -kLabelSize, width + 1, 2 * kLabelSize), Qt::AlignLeft | Qt::AlignVCenter,
                     text);
    painter.restore();
  }
}

void GammaChartView::paint_curve(QPainter& painter, GammaCurveId id) const {
  QPolygonF line;
  for (ChartPixel pixel : gamma_polyline(values_.curve(id))) line << point_of(pixel);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colour_of(id), 2));
  painter.drawPolyline(line);
  painter.setPen(QPen(colour_of(id), 1));
  // The line starts at the plot's corner, which is no point of the curve.
  for (qsizetype i = 1; i < line.size(); ++i)
    painter.drawEllipse(line[i], kGammaMarkRadius, kGammaMarkRadius);
}

void GammaChartView::paint_focus(QPainter& painter) const {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
  painter.drawRect(rect_of(kGammaFrame).adjusted(3, 3, -3, -3));
}

void GammaChartView::paint_chosen(QPainter& painter) const {
  painter.setBrush(Qt::NoBrush);
  for (const std::optional<GammaHit>& hit : {chosen_, hovered_}) {
    if (!hit) continue;
    painter.setPen(QPen(Qt::black, hit == chosen_ ? 2 : 1));
    for (GammaCurveId id : hit->curves) {
      const ChartPixel pixel = gamma_pixel(kGammaPositions[hit->point], values_.curve(id)[hit->point]);
      painter.drawEllipse(point_of(pixel), 2 * kGammaMarkRadius, 2 * kGammaMarkRadius);
    }
  }
  painter.setFont(sized(font(), kReadoutSize));
  painter.setPen(Qt::black);
  painter.drawText(rect_of(kGammaFrame).adjusted(25, 4, -25, 0), Qt::AlignLeft | Qt::AlignTop, readout());
}

}  // namespace qv5123
