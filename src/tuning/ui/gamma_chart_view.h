#pragma once

#include <QFont>
#include <QPixmap>
#include <QTransform>
#include <QWidget>

#include <map>
#include <optional>

#include "tuning/gamma_chart.h"
#include "tuning/ui/chart_tools.h"

namespace qv5123 {

/// Where a curve stands beside the page.
enum class GammaPlace { file, chip };

/// The gamma curves of the current selection over the front curve, the points draggable with the mouse. The
/// left and right keys choose a point, up and down move it, by 1 or with page up and page down by 16; while
/// none is chosen any of them chooses the first. The wheel or + enlarges a part. A click on a curve's name,
/// or the key of its number, hides it. The chart grows with the page and keeps its proportions.
///
/// The view shows the page's own values and changes nothing in them: it tells what the user wants moved.
class GammaChartView : public QWidget {
  Q_OBJECT

 public:
  /// `values` must outlive the view.
  explicit GammaChartView(const GammaValues& values);

  /// To be called after any change of the values.
  void refresh();
  /// The curves of the user data, or those that the chip is known to have, to be drawn behind the page's own
  /// where they are others.
  void show_others(GammaPlace place, std::map<GammaCurveId, GammaCurve> curves);

  /// Where a pixel of the chart stands in the widget.
  QPointF to_widget(ChartPixel pixel) const;
  /// The points under the mouse or selected by key, with their values; empty when there are none.
  QString readout() const;
  /// The curves' points, a line for each position.
  QString numbers() const;
  /// Whether the curve is among those drawn.
  bool shows(GammaCurveId id) const;
  /// Where the curve's name, or that of all of a place, stands in the widget; empty where it is not drawn.
  QRectF legend_place(GammaCurveId id) const;
  QRectF legend_place(GammaPlace place) const;

  QSize sizeHint() const override { return {580, 580}; }
  QSize minimumSizeHint() const override { return {400, 400}; }

 signals:
  /// Dragged to `value`, 0..1023.
  void point_dragged(const qv5123::GammaHit& points, int value);
  /// The mouse has let go of it.
  void drag_ended();
  /// Moved by key.
  void point_nudged(const qv5123::GammaHit& points, int delta);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QTransform transform() const;
  QTransform zoomed() const;
  ChartPixel to_chart(QPointF point) const;
  std::optional<GammaHit> hit_at(QPointF point) const;
  void zoom(int notches);
  std::vector<GammaCurveId> curves() const;
  /// The curve there; null where it is not known, is the same as the page's, or is hidden.
  const GammaCurve* other_curve(GammaPlace place, GammaCurveId id) const;
  bool has_others(GammaPlace place) const;
  void hover(std::optional<GammaHit> hit);
  void choose_neighbour(int step);
  void paint_background(QPainter& painter);
  void paint_frame(QPainter& painter) const;
  void paint_grid(QPainter& painter) const;
  void paint_labels(QPainter& painter) const;
  void paint_scale(QPainter& painter) const;
  void paint_titles(QPainter& painter) const;
  void paint_curves(QPainter& painter);
  void paint_curve(QPainter& painter, GammaCurveId id) const;
  QPixmap make_layer() const;
  QPixmap mark_of(GammaCurveId id) const;
  std::vector<std::pair<GammaPlace, GammaCurveId>> others_to_draw() const;
  void paint_others(QPainter& painter) const;
  void paint_legend(QPainter& painter);
  void paint_readout(QPainter& painter) const;
  QColor colour_of(GammaCurveId id) const;
  void paint_chosen(QPainter& painter) const;

  const GammaValues& values_;
  std::optional<GammaHit> hovered_;
  std::optional<GammaHit> chosen_;
  bool dragging_ = false;
  std::map<GammaPlace, std::map<GammaCurveId, GammaCurve>> others_;
  ChartZoom zoom_;
  ChartLegend legend_;
  ChartLegend others_legend_;
  /// What stands behind the curves, as it was last painted; null where it is to be painted anew.
  QPixmap background_;
  /// The others' curves, and which of them are on it.
  QPixmap others_layer_;
  std::vector<std::pair<GammaPlace, GammaCurveId>> drawn_others_;
};

}  // namespace qv5123
