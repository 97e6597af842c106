#pragma once

#include <QFont>
#include <QPixmap>
#include <QTransform>
#include <QWidget>

#include <optional>

#include "tuning/gamma_chart.h"

namespace qv5123 {

/// The gamma curves of the current selection over the front curve, the points draggable with the mouse. The
/// left and right keys choose a point, up and down move it, by 1 or with page up and page down by 16; while
/// none is chosen any of them chooses the first. It
/// grows with the page and keeps its proportions; its colours are the same in every palette.
///
/// The view shows the page's own values and changes nothing in them: it tells what the user wants moved.
class GammaChartView : public QWidget {
  Q_OBJECT

 public:
  /// `values` must outlive the view.
  explicit GammaChartView(const GammaValues& values);

  /// To be called after any change of the values.
  void refresh();

  /// Where a pixel of the chart stands in the widget.
  QPointF to_widget(ChartPixel pixel) const;
  /// The points under the mouse or selected by key, with their values; empty when there are none.
  QString readout() const;

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

 private:
  QTransform transform() const;
  ChartPixel to_chart(QPointF point) const;
  void hover(std::optional<GammaHit> hit);
  void choose_neighbour(int step);
  void paint_background(QPainter& painter);
  void paint_frame(QPainter& painter) const;
  void paint_grid(QPainter& painter) const;
  void paint_labels(QPainter& painter) const;
  void paint_curve(QPainter& painter, GammaCurveId id) const;
  void paint_chosen(QPainter& painter) const;
  void paint_focus(QPainter& painter) const;

  const GammaValues& values_;
  std::optional<GammaHit> hovered_;
  std::optional<GammaHit> chosen_;
  bool dragging_ = false;
  /// What stands behind the curves, as it was last painted, and its font.
  QPixmap background_;
  QFont background_font_;
};

}  // namespace qv5123
