#include "tuning/ui/gamma_chart_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/saturate.h"
#include "tuning/ui/gamma_chart_geometry.h"

namespace qv5123 {
namespace {

constexpr int kPageStep = 16;

}  // namespace

GammaChartView::GammaChartView(const GammaValues& values) : values_(values) {
  setAccessibleName("Gamma curves");
  setToolTip(
      "Drag the points, or choose one with the left and right keys and move it with up and down. The wheel "
      "or + enlarges, 0 shows all again, a click on a name or the key of its number hides its curve, Ctrl+C "
      "copies. Dashed: the file's curve, dotted: the chip's, where they differ.");
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  add_chart_menu(
      this, [this] { return numbers(); }, [this](int notches) { zoom(notches); });
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

QTransform GammaChartView::zoomed() const {
  return zoom_.transform(plot_rect());
}

QPointF GammaChartView::to_widget(ChartPixel pixel) const {
  return transform().map(zoomed().map(point_of(pixel)));
}

ChartPixel GammaChartView::to_chart(QPointF point) const {
  const QPointF at = zoomed().inverted().map(transform().inverted().map(point));
  return {saturate_to_int(std::round(at.x())), saturate_to_int(std::round(at.y()))};
}

std::optional<GammaHit> GammaChartView::hit_at(QPointF point) const {
  std::optional<GammaHit> hit = nearest_gamma_point(values_, to_chart(point));
  if (!hit) return hit;
  std::erase_if(hit->curves, [this](GammaCurveId id) { return !shows(id); });
  return hit->curves.empty() ? std::nullopt : hit;
}

void GammaChartView::zoom(int notches) {
  zoom_.step(notches);
  background_ = {};
  update();
}

void GammaChartView::show_others(GammaPlace place, std::map<GammaCurveId, GammaCurve> curves) {
  if (others_[place] == curves) return;
  others_[place] = std::move(curves);
  background_ = {};
  update();
}

const GammaCurve* GammaChartView::other_curve(GammaPlace place, GammaCurveId id) const {
  const auto curves = others_.find(place);
  if (curves == others_.end() || !shows(id)) return nullptr;
  const auto curve = curves->second.find(id);
  const bool differs = curve != curves->second.end() && curve->second != values_.curve(id);
  return differs ? &curve->second : nullptr;
}

bool GammaChartView::has_others(GammaPlace place) const {
  return std::ranges::any_of(curves(),
                             [this, place](GammaCurveId id) { return other_curve(place, id) != nullptr; });
}

std::vector<GammaCurveId> GammaChartView::curves() const {
  std::vector<GammaCurveId> ids = selected_curves(values_.channel);
  if (std::find(ids.begin(), ids.end(), GammaCurveId::front) == ids.end()) ids.push_back(GammaCurveId::front);
  return ids;
}

bool GammaChartView::shows(GammaCurveId id) const {
  return legend_.shows(static_cast<std::size_t>(id));
}

QRectF GammaChartView::legend_place(GammaCurveId id) const {
  return transform().mapRect(legend_.place(static_cast<std::size_t>(id)));
}

QRectF GammaChartView::legend_place(GammaPlace place) const {
  return transform().mapRect(others_legend_.place(static_cast<std::size_t>(place)));
}

QColor GammaChartView::colour_of(GammaCurveId id) const {
  const ChartColours colours = chart_colours(palette());
  if (id == GammaCurveId::front) return colours.text;
  constexpr Qt::GlobalColor kColours[] = {Qt::red, Qt::green, Qt::blue};
  return readable_on(colours.plot, kColours[static_cast<std::size_t>(id)]);
}

QString GammaChartView::numbers() const {
  std::vector<const GammaCurve*> columns;
  QString text = "Input";
  const auto add = [&](GammaCurveId id, const char* place, const GammaCurve* curve) {
    if (!curve) return;
    columns.push_back(curve);
    text += u'\t' + QString(kGammaCurveNames[static_cast<std::size_t>(id)]) + place;
  };
  for (const GammaCurveId id : curves()) add(id, "", &values_.curve(id));
  for (const GammaCurveId id : curves()) add(id, " file", other_curve(GammaPlace::file, id));
  for (const GammaCurveId id : curves()) add(id, " chip", other_curve(GammaPlace::chip, id));
  for (std::size_t i = 0; i < kGammaPoints; ++i) {
    text += QString("\n%1").arg(kGammaPositions[i]);
    for (const GammaCurve* curve : columns) text += QString("\t%1").arg((*curve)[i]);
  }
  return text + "\n";
}

QString GammaChartView::readout() const {
  const std::optional<GammaHit>& hit = hovered_ ? hovered_ : chosen_;
  if (!hit) return {};
  QString text = QString("Point %1 at %2:").arg(hit->point + 1).arg(kGammaPositions[hit->point]);
  for (GammaCurveId id : hit->curves) {
    text += QString("  %1 = %2, slope %3")
                .arg(kGammaCurveNames[static_cast<std::size_t>(id)])
                .arg(values_.curve(id)[hit->point])
                .arg(gamma_slope(values_.curve(id), hit->point), 0, 'f', 2);
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
  const QPointF at = transform().inverted().map(event->position());
  if (legend_.click(at) || others_legend_.click(at)) return update();
  chosen_ = hit_at(event->position());
  hovered_.reset();
  dragging_ = chosen_.has_value();
  refresh();
}

void GammaChartView::mouseMoveEvent(QMouseEvent* event) {
  if (!dragging_ || !chosen_) return hover(hit_at(event->position()));
  emit point_dragged(*chosen_, gamma_value_at(to_chart(event->position()).y));
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
      if (legend_.press(event->key()) || others_legend_.press(event->key() - legend_.names()))
        return update();
      QWidget::keyPressEvent(event);
  }
}

void GammaChartView::wheelEvent(QWheelEvent* event) {
  if (!zoom_.turn(*event, transform().mapRect(plot_rect()))) return;
  background_ = {};
  update();
}

void GammaChartView::changeEvent(QEvent* event) {
  background_ = {};
  QWidget::changeEvent(event);
}

}  // namespace qv5123
