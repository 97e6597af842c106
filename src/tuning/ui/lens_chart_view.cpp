#include "tuning/ui/lens_chart_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <cmath>

namespace qv5123 {
namespace {

constexpr int kTickX = 256;
constexpr int kTickLevel = 64;
constexpr double kLowestTop = 256;
/// What the correction may come to and is still drawn.
constexpr double kHighestTop = 1024;
constexpr double kSampleRadius = 2.5;

}  // namespace

LensChartView::LensChartView(const LensCalibration& calibration, const LensValues& values)
    : calibration_(calibration), values_(values) {
  setAccessibleName("Lens shading chart");
  setToolTip(
      "The left and right keys go from sample to sample. The wheel or + enlarges, 0 shows all again, a "
      "click on a color's name or the key of its number hides it, Ctrl+C copies.");
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  add_chart_menu(
      this, [this] { return numbers(); }, [this](int notches) { zoom(notches); });
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  refresh();
}

/// While the sweep is under way there are samples, but no curve yet.
bool LensChartView::fitted() const {
  return !samples_.empty() && calibration_.centre.peak != PerColour{};
}

void LensChartView::refresh() {
  samples_ = calibration_.samples;
  std::sort(samples_.begin(), samples_.end(), [](const auto& a, const auto& b) { return a.x < b.x; });
  if (hovered_ && *hovered_ >= samples_.size()) hovered_.reset();
  double highest = kLowestTop;
  for (const LensSample& sample : samples_) {
    for (std::size_t c = 0; c < 3 && fitted(); ++c) {
      highest = std::max(highest, corrected_level(calibration_, values_, sample, c));
    }
  }
  top_level_ = std::min(std::ceil(highest / kTickLevel) * kTickLevel, kHighestTop);
  setAccessibleDescription(QString("%1 samples").arg(samples_.size()));
  update();
}

QRectF LensChartView::plot() const {
  const int line = fontMetrics().height();
  // Below it the positions and their title.
  return QRectF(rect()).adjusted(fontMetrics().horizontalAdvance("0000") + 8, 2 * line + 8, -line,
                                 -2 * line - 8);
}

QPointF LensChartView::to_widget(double x, double level) const {
  const QRectF area = plot();
  return zoom_.transform(area).map(QPointF(area.left() + area.width() * x / std::max(calibration_.width, 1),
                                           area.bottom() - area.height() * level / top_level_));
}

QColor LensChartView::colour_of(std::size_t colour) const {
  static constexpr std::array<QRgb, 3> kColours{qRgb(215, 0, 0), qRgb(0, 150, 0), qRgb(0, 0, 230)};
  return readable_on(chart_colours(palette()).plot, QColor(kColours[colour]));
}

QString LensChartView::numbers() const {
  QString text = "X\tR\tG\tB";
  if (fitted()) text += "\tR corrected\tG corrected\tB corrected";
  for (const LensSample& sample : samples_) {
    text += QString("\n%1").arg(sample.x);
    for (const int level : sample.rgb) text += QString("\t%1").arg(level);
    for (std::size_t c = 0; c < 3 && fitted(); ++c)
      text += QString("\t%1").arg(corrected_level(calibration_, values_, sample, c), 0, 'f', 1);
  }
  return text + "\n";
}

void LensChartView::zoom(int notches) {
  zoom_.step(notches);
  update();
}

QString LensChartView::readout() const {
  if (!hovered_) return {};
  const LensSample& sample = samples_[*hovered_];
  QString text = QString("X %1:").arg(sample.x);
  for (std::size_t c = 0; c < 3; ++c) {
    text += QString("   %1 %2").arg(kColourNames[c]).arg(sample.rgb[c]);
    if (fitted()) {
      text += QString(" \u2192 %1").arg(corrected_level(calibration_, values_, sample, c), 0, 'f', 1);
    }
  }
  return text;
}

void LensChartView::mouseMoveEvent(QMouseEvent* event) {
  const auto distance = [&](const LensSample& sample) {
    return std::abs(to_widget(sample.x, 0).x() - event->position().x());
  };
  const auto nearest = std::min_element(samples_.begin(), samples_.end(), [&](const auto& a, const auto& b) {
    return distance(a) < distance(b);
  });
  hovered_.reset();
  if (nearest != samples_.end() && plot().contains(event->position())) {
    hovered_ = static_cast<std::size_t>(nearest - samples_.begin());
  }
  update();
}

void LensChartView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && legend_.click(event->position())) update();
}

void LensChartView::leaveEvent(QEvent*) {
  hovered_.reset();
  update();
}

void LensChartView::keyPressEvent(QKeyEvent* event) {
  if (legend_.press(event->key())) return update();
  const int step = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
  if (step == 0 || samples_.empty()) return QWidget::keyPressEvent(event);
  const int last = static_cast<int>(samples_.size()) - 1;
  const int now = hovered_ ? static_cast<int>(*hovered_) + step : step > 0 ? 0 : last;
  hovered_ = static_cast<std::size_t>(std::clamp(now, 0, last));
  setAccessibleDescription(readout());
  update();
}

void LensChartView::wheelEvent(QWheelEvent* event) {
  if (zoom_.turn(*event, plot())) update();
}

void LensChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const ChartColours colours = chart_colours(palette());
  painter.fillRect(rect(), colours.paper);
  painter.fillRect(plot(), colours.plot);
  paint_axes(painter);
  paint_titles(painter);
  painter.setRenderHint(QPainter::Antialiasing);
  paint_samples(painter);
  if (fitted()) paint_centre(painter);
  paint_legend(painter);
  paint_texts(painter);
}

void LensChartView::paint_axes(QPainter& painter) const {
  const QRectF area = plot();
  const double line = fontMetrics().height();
  const ChartColours colours = chart_colours(palette());
  const int finer = static_cast<int>(std::log2(zoom_.factor()));
  for (int x = 0; x <= calibration_.width; x += kTickX >> finer) {
    const double at = to_widget(x, 0).x();
    if (at < area.left() || at > area.right()) continue;
    painter.setPen(colours.grid);
    painter.drawLine(QPointF(at, area.bottom()), QPointF(at, area.top()));
    painter.setPen(colours.text);
    painter.drawText(QRectF(at - 40, area.bottom() + 4, 80, line), Qt::AlignCenter, QString::number(x));
  }
  for (int level = 0; level <= top_level_; level += kTickLevel >> finer) {
    const double at = to_widget(0, level).y();
    if (at < area.top() - 1 || at > area.bottom() + 1) continue;
    painter.setPen(colours.grid);
    painter.drawLine(QPointF(area.left(), at), QPointF(area.right(), at));
    painter.setPen(colours.text);
    painter.drawText(QRectF(0, at - line / 2, area.left() - 4, line), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(level));
  }
  painter.setPen(colours.text);
  painter.drawRect(area);
}

void LensChartView::paint_titles(QPainter& painter) const {
  const QRectF area = plot();
  const double line = fontMetrics().height();
  painter.setPen(chart_colours(palette()).text);
  painter.drawText(QRectF(area.left(), area.bottom() + 4 + line, area.width(), line), Qt::AlignCenter,
                   "Position on the line, pixels");
  painter.drawText(area.adjusted(5, 3, -5, -3), Qt::AlignLeft | Qt::AlignTop, "Level, 0..255");
}

void LensChartView::paint_samples(QPainter& painter) const {
  painter.save();
  painter.setClipRect(plot());
  for (std::size_t c = 0; c < 3; ++c) {
    if (!legend_.shows(c)) continue;
    if (fitted()) paint_curve(painter, c);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour_of(c));
    for (const LensSample& sample : samples_) {
      painter.drawEllipse(to_widget(sample.x, sample.rgb[c]), kSampleRadius, kSampleRadius);
    }
    if (fitted()) paint_corrected(painter, c);
  }
  if (hovered_) {
    const double x = to_widget(samples_[*hovered_].x, 0).x();
    painter.setPen(QPen(Qt::gray, 1));
    painter.drawLine(QPointF(x, plot().top()), QPointF(x, plot().bottom()));
  }
  painter.restore();
}

void LensChartView::paint_curve(QPainter& painter, std::size_t colour) const {
  QPolygonF line;
  for (int x = 0; x <= calibration_.width; x += 16) {
    line << to_widget(x, calibration_.centre.curves[colour].at(x));
  }
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colour_of(colour), 1));
  painter.drawPolyline(line);
}

void LensChartView::paint_corrected(QPainter& painter, std::size_t colour) const {
  QPolygonF line;
  for (const LensSample& sample : samples_) {
    line << to_widget(sample.x, corrected_level(calibration_, values_, sample, colour));
  }
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colour_of(colour), 2, Qt::DotLine));
  painter.drawPolyline(line);
}

void LensChartView::paint_centre(QPainter& painter) const {
  const double x = to_widget(calibration_.centre.x, 0).x();
  if (x < plot().left() || x > plot().right()) return;
  painter.setPen(QPen(chart_colours(palette()).text, 1, Qt::DashLine));
  painter.drawLine(QPointF(x, plot().top()), QPointF(x, plot().bottom()));
}

void LensChartView::paint_legend(QPainter& painter) {
  std::vector<ChartLegend::Entry> entries(3);
  for (std::size_t c = 0; c < entries.size() && !samples_.empty(); ++c)
    entries[c] = {kColourNames[c], colour_of(c)};
  const QRectF area(8, 4 + fontMetrics().height(), width() - 16, fontMetrics().height());
  legend_.paint(painter, area, entries);
}

void LensChartView::paint_texts(QPainter& painter) const {
  painter.setPen(chart_colours(palette()).text);
  QString legend = "No calibration yet: enable the color picker, then press CALIBRATION.";
  if (fitted()) {
    legend =
        QString("\u25CF measured   \u2014 fitted   \u22EF corrected   \u00A6 center %1   peak R %2 G %3 B %4")
            .arg(calibration_.centre.x)
            .arg(calibration_.centre.peak[0])
            .arg(calibration_.centre.peak[1])
            .arg(calibration_.centre.peak[2]);
  } else if (!samples_.empty()) {
    legend = QString("\u25CF measured at %1 positions").arg(samples_.size());
  }
  const double line = fontMetrics().height();
  painter.drawText(QRectF(8, 4, width() - 16, line), Qt::AlignLeft, legend);
  painter.drawText(QRectF(8, 4 + line, width() - 16, line), Qt::AlignLeft, readout());
  if (hasFocus()) paint_focus(painter, QRectF(rect()).adjusted(1, 1, -2, -2), chart_colours(palette()).text);
}

}  // namespace qv5123
