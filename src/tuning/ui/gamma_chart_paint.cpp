// How the gamma chart looks.
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/saturate.h"
#include "tuning/ui/gamma_chart_geometry.h"
#include "tuning/ui/gamma_chart_view.h"

namespace qv5123 {
namespace {

/// Height of the position labels, which stand upright, and so the least distance between two.
constexpr int kLabelSize = 8;
/// Of the labels on the left, within the line that tells of the focus.
constexpr double kScaleRoom = kGammaPlot.left - kGammaFrame.left - 9;
constexpr int kReadoutSize = 11;
/// Of the scale on the left, as long as the whole plot is shown.
constexpr int kScaleStep = 128;
constexpr int kTitleSize = 10;
/// Of the names of file and chip from the plot's lower edge, and of the title beside them.
constexpr int kOthersBelow = 18;
constexpr int kInputTitle = 110;
constexpr double kOtherOpacity = 0.5;

QFont sized(QFont font, int pixels) {
  font.setPixelSize(pixels);
  return font;
}

/// A label that begins or ends at a point. Four digits of some fonts are longer than the room at the edges.
void draw_narrowed(QPainter& painter, QPointF at, double room, Qt::AlignmentFlag side, const QString& text) {
  const double width = painter.fontMetrics().horizontalAdvance(text);
  painter.save();
  painter.translate(at);
  painter.scale(std::min(1.0, room / width), 1);
  const double left = side == Qt::AlignRight ? -width - 1 : 0;
  painter.drawText(QRectF(left, -kLabelSize, width + 1, 2 * kLabelSize), side | Qt::AlignVCenter, text);
  painter.restore();
}

/// Where the label of each position stands: below it, or as far to the right as the one before demands.
std::vector<int> label_places(const QTransform& zoomed) {
  std::vector<int> places;
  int next = 0;
  for (const int position : kGammaPositions) {
    const double x = zoomed.map(point_of(gamma_pixel(position, 0))).x();
    places.push_back(x < kGammaPlot.left ? saturate_to_int(x) : std::max(saturate_to_int(x), next));
    if (x >= kGammaPlot.left) next = places.back() + kLabelSize;
  }
  return places;
}

}  // namespace

void GammaChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paint_background(painter);
  painter.setTransform(transform());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.save();
  // Half a mark lies beyond the plot's edge.
  const int mark = 2 * kGammaMarkRadius;
  painter.setClipRect(plot_rect().adjusted(-mark, -mark, mark, mark));
  paint_curves(painter);
  painter.restore();
  paint_legend(painter);
  paint_readout(painter);
  if (hasFocus())
    paint_focus(painter, rect_of(kGammaFrame).adjusted(3, 3, -3, -3), chart_colours(palette()).text);
}

/// Both layers stay while the points move, and take longer to paint than they do.
void GammaChartView::paint_background(QPainter& painter) {
  if (background_.size() != size() * devicePixelRatio()) {
    drawn_others_.clear();
    background_ = make_layer();
    QPainter behind(&background_);
    behind.setTransform(transform());
    paint_frame(behind);
    paint_grid(behind);
    paint_labels(behind);
    paint_scale(behind);
    paint_titles(behind);
  }
  painter.drawPixmap(0, 0, background_);
  std::vector<std::pair<GammaPlace, GammaCurveId>> others = others_to_draw();
  if (others.empty()) return;
  if (others != drawn_others_) {
    drawn_others_ = std::move(others);
    others_layer_ = make_layer();
    QPainter layer(&others_layer_);
    paint_others(layer);
  }
  painter.drawPixmap(0, 0, others_layer_);
}

QPixmap GammaChartView::make_layer() const {
  QPixmap layer(size() * devicePixelRatio());
  layer.setDevicePixelRatio(devicePixelRatio());
  layer.fill(Qt::transparent);
  return layer;
}

void GammaChartView::paint_frame(QPainter& painter) const {
  const ChartColours colours = chart_colours(palette());
  const QRectF frame = rect_of(kGammaFrame);
  painter.fillRect(frame, colours.paper);
  painter.fillRect(plot_rect(), colours.plot);
  painter.setPen(QPen(colours.grid, 1));
  painter.drawRect(frame);
  painter.drawRect(plot_rect());
}

void GammaChartView::paint_grid(QPainter& painter) const {
  painter.save();
  painter.setClipRect(plot_rect());
  painter.setPen(QPen(readable_on(chart_colours(palette()).plot, QColor(kGammaGridColour)), 1, Qt::DotLine));
  for (int position : kGammaPositions) {
    const double x = zoomed().map(point_of(gamma_pixel(position, 0))).x();
    painter.drawLine(QPointF(x, kGammaPlot.bottom), QPointF(x, kGammaPlot.top));
  }
  painter.restore();
}

void GammaChartView::paint_labels(QPainter& painter) const {
  const ChartColours colours = chart_colours(palette());
  painter.setFont(sized(font(), kLabelSize));
  const std::vector<int> places = label_places(zoomed());
  // Short of the frame also where a small font is drawn wider than it measures.
  constexpr double room = kGammaFrame.bottom - kGammaLabelY - 5;
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    const double x = zoomed().map(point_of(gamma_pixel(kGammaPositions[i], 0))).x();
    if (x < kGammaPlot.left || places[i] > kGammaPlot.right + kLabelSize) continue;
    painter.setPen(QPen(Qt::gray, 0));
    painter.drawLine(QPointF(x, kGammaPlot.bottom), QPointF(places[i], kGammaLabelY - 1));
    painter.setPen(colours.text);
    painter.save();
    painter.translate(places[i], kGammaLabelY);
    painter.rotate(90);
    draw_narrowed(painter, {}, room, Qt::AlignLeft, QString::number(kGammaPositions[i]));
    painter.restore();
  }
}

void GammaChartView::paint_scale(QPainter& painter) const {
  const ChartColours colours = chart_colours(palette());
  painter.setFont(sized(font(), kLabelSize));
  painter.setPen(colours.text);
  const int step = std::max(1, kScaleStep >> static_cast<int>(std::log2(zoom_.factor())));
  for (int value = 0; value <= kGammaMaximum + 1; value += step) {
    const int shown = std::min(value, kGammaMaximum);
    const double y = zoomed().map(point_of(gamma_pixel(0, shown))).y();
    if (y < kGammaPlot.top - 1 || y > kGammaPlot.bottom) continue;
    painter.drawLine(QPointF(kGammaPlot.left - 3, y), QPointF(kGammaPlot.left, y));
    draw_narrowed(painter, {kGammaPlot.left - 4.0, y}, kScaleRoom, Qt::AlignRight, QString::number(shown));
  }
}

void GammaChartView::paint_titles(QPainter& painter) const {
  painter.setFont(sized(font(), kTitleSize));
  const ChartColours colours = chart_colours(palette());
  painter.setPen(colours.text);
  const QRectF inside = plot_rect().adjusted(5, 3, -5, -3);
  draw_on(painter, inside, Qt::AlignLeft | Qt::AlignTop, "Output, 0..1023", colours.plot);
  draw_on(painter, inside, Qt::AlignRight | Qt::AlignBottom, "Input, 0..1023", colours.plot);
}

void GammaChartView::paint_curves(QPainter& painter) {
  painter.setTransform(zoomed() * transform());
  const std::vector<GammaCurveId> ids = curves();
  // The front curve is behind the others.
  for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
    if (shows(*id)) paint_curve(painter, *id);
  }
  paint_chosen(painter);
}

/// Line by line, and the marks as pictures: a path of them all is filled by several threads, whose turns take
/// more time than the painting while a point is dragged.
void GammaChartView::paint_curve(QPainter& painter, GammaCurveId id) const {
  const auto pixels = gamma_polyline(values_.curve(id));
  QList<QLineF> lines;
  for (std::size_t i = 1; i < pixels.size(); ++i)
    lines.append({point_of(pixels[i - 1]), point_of(pixels[i])});
  painter.setPen(QPen(colour_of(id), 2 / zoom_.factor()));
  painter.drawLines(lines);
  const QPixmap mark = mark_of(id);
  const QPointF middle = QRectF({}, mark.deviceIndependentSize()).center();
  const QTransform to_window = painter.transform();
  painter.save();
  painter.resetTransform();
  // The line starts at the plot's corner, which is no point of the curve.
  for (const QLineF& line : lines) painter.drawPixmap(to_window.map(line.p2()) - middle, mark);
  painter.restore();
}

QPixmap GammaChartView::mark_of(GammaCurveId id) const {
  const double scale = transform().m11();
  const int half = static_cast<int>(std::ceil((kGammaMarkRadius + 1) * scale));
  QPixmap mark(QSize(2 * half, 2 * half) * devicePixelRatio());
  mark.setDevicePixelRatio(devicePixelRatio());
  mark.fill(Qt::transparent);
  QPainter painter(&mark);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colour_of(id), scale));
  painter.drawEllipse(QPointF(half, half), kGammaMarkRadius * scale, kGammaMarkRadius * scale);
  return mark;
}

std::vector<std::pair<GammaPlace, GammaCurveId>> GammaChartView::others_to_draw() const {
  std::vector<std::pair<GammaPlace, GammaCurveId>> drawn;
  for (const GammaPlace place : {GammaPlace::file, GammaPlace::chip})
    for (const GammaCurveId id : curves())
      if (others_legend_.shows(static_cast<std::size_t>(place)) && other_curve(place, id))
        drawn.emplace_back(place, id);
  return drawn;
}

void GammaChartView::paint_others(QPainter& painter) const {
  painter.setTransform(transform());
  painter.setClipRect(plot_rect());
  painter.setTransform(zoomed() * transform());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(kOtherOpacity);
  for (const auto& [place, id] : drawn_others_) {
    QPolygonF line;
    for (ChartPixel pixel : gamma_polyline(*other_curve(place, id))) line << point_of(pixel);
    const Qt::PenStyle style = place == GammaPlace::file ? Qt::DashLine : Qt::DotLine;
    painter.setPen(QPen(colour_of(id), 2 / zoom_.factor(), style));
    painter.drawPolyline(line);
  }
}

void GammaChartView::paint_legend(QPainter& painter) {
  std::vector<ChartLegend::Entry> entries(4);
  for (const GammaCurveId id : curves()) {
    const auto at = static_cast<std::size_t>(id);
    entries[at] = {kGammaCurveNames[at], colour_of(id)};
  }
  painter.setFont(sized(font(), kReadoutSize));
  legend_.paint(painter, rect_of(kGammaFrame).adjusted(25, 4, -25, 0), entries);
  const QColor text = chart_colours(palette()).text;
  const auto named = [&](GammaPlace place, const char* name) {
    return ChartLegend::Entry{has_others(place) ? name : "", text};
  };
  const QRectF below = plot_rect().adjusted(0, plot_rect().height() - kOthersBelow, -kInputTitle, 0);
  others_legend_.paint(painter, below,
                       {named(GammaPlace::file, "- - File"), named(GammaPlace::chip, ". . . Chip")});
}

void GammaChartView::paint_chosen(QPainter& painter) const {
  const double point = 1 / zoom_.factor();
  painter.setBrush(Qt::NoBrush);
  for (const std::optional<GammaHit>& hit : {chosen_, hovered_}) {
    if (!hit) continue;
    painter.setPen(QPen(chart_colours(palette()).text, (hit == chosen_ ? 2 : 1) * point));
    for (GammaCurveId id : hit->curves) {
      const ChartPixel pixel = gamma_pixel(kGammaPositions[hit->point], values_.curve(id)[hit->point]);
      painter.drawEllipse(point_of(pixel), 2 * kGammaMarkRadius * point, 2 * kGammaMarkRadius * point);
    }
  }
}

void GammaChartView::paint_readout(QPainter& painter) const {
  painter.setFont(sized(font(), kReadoutSize));
  painter.setPen(chart_colours(palette()).text);
  painter.drawText(rect_of(kGammaFrame).adjusted(25, 4, -25, 0), Qt::AlignLeft | Qt::AlignTop, readout());
}

}  // namespace qv5123
