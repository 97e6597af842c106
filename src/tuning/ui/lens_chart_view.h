#pragma once

#include <QWidget>

#include <optional>

#include "tuning/lens_fit.h"
#include "tuning/ui/chart_tools.h"

namespace qv5123 {

/// What a lens shading calibration measured along the line, the curves fitted to it, the centre, and what
/// the parameters make of it. The left and right keys go from sample to sample, the wheel or + enlarges a
/// part, a click on a colour's name or the key of its number hides it.
class LensChartView : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive the view.
  LensChartView(const LensCalibration& calibration, const LensValues& values);

  /// To be called after any change of them.
  void refresh();
  /// The sample under the mouse with its levels, before and after correction; empty when there is none.
  QString readout() const;
  /// Position, levels and corrected levels of each sample, a line for each.
  QString numbers() const;
  /// Where a colour's name stands in the widget.
  QRectF legend_place(std::size_t colour) const { return legend_.place(colour); }
  /// Where `level` at `x` pixels along the line stands in the widget.
  QPointF to_widget(double x, double level) const;

  QSize sizeHint() const override { return {560, 400}; }
  QSize minimumSizeHint() const override { return {320, 220}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void zoom(int notches);
  bool fitted() const;
  QRectF plot() const;
  QColor colour_of(std::size_t colour) const;
  void paint_axes(QPainter& painter) const;
  void paint_samples(QPainter& painter) const;
  void paint_centre(QPainter& painter) const;
  void paint_curve(QPainter& painter, std::size_t colour) const;
  void paint_corrected(QPainter& painter, std::size_t colour) const;
  void paint_titles(QPainter& painter) const;
  void paint_legend(QPainter& painter);
  void paint_texts(QPainter& painter) const;

  const LensCalibration& calibration_;
  const LensValues& values_;
  std::vector<LensSample> samples_;     ///< along the line, not in the order of the sweep
  double top_level_ = 0;                ///< of the scale
  std::optional<std::size_t> hovered_;  ///< or chosen by key
  ChartZoom zoom_;
  ChartLegend legend_;
};

}  // namespace qv5123
