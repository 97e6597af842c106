#pragma once

#include <QPointF>
#include <QString>
#include <QTransform>
#include <QWidget>
#include <array>
#include <vector>

#include "tuning/awb_chart.h"
#include "tuning/ui/chart_tools.h"

namespace qv5123 {

/// The white-detection chart: the lines A to F and the measured patches in the Cb/Y-Cr/Y plane. It grows with
/// the page and keeps its proportions. The wheel or + enlarges a part; a click on a line's name or the key
/// of its number hides it. The left and right keys go from patch to patch. An arrow at the edge tells of one
/// beyond it.
class AwbChartView : public QWidget {
  Q_OBJECT

 public:
  explicit AwbChartView(QWidget* parent = nullptr);

  void show_values(const AwbValues& values);
  /// What lies under a point of the widget: the patch with its measured colour and its place; empty
  /// elsewhere.
  QString text_at(QPointF point) const;
  /// Where a point of the chart, origin in the middle, stands in the widget.
  QPointF to_widget(ChartPoint point) const;
  /// The lines' values and the patches' places.
  QString numbers() const;
  /// Where a name stands, once drawn: the lines A to F in their order, then the patches.
  QRectF legend_place(std::size_t entry) const { return whole().mapRect(legend_.place(entry)); }

  QSize sizeHint() const override { return {430, 430}; }
  QSize minimumSizeHint() const override { return {260, 260}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  QTransform transform() const;
  QTransform whole() const;
  QPointF shown_place(const ChartPatch& patch) const;
  QString text_of(const ChartPatch& patch) const;
  void paint_frame(QPainter& painter) const;
  void paint_scale(QPainter& painter) const;
  void paint_lines(QPainter& painter) const;
  void paint_letters(QPainter& painter) const;
  void paint_patches(QPainter& painter) const;
  void paint_arrow(QPainter& painter, const ChartPatch& patch) const;
  void paint_legend(QPainter& painter);
  QColor background() const;
  QColor text_colour() const;
  QColor colour_of(ChartPen pen) const;

  AwbValues values_;
  std::array<ChartLine, 6> lines_;
  std::vector<ChartPatch> patches_;
  int told_ = -1;  // the patch that the keys are at, of patches_; before the first one at the start
  ChartZoom zoom_;
  ChartLegend legend_;
};

}  // namespace qv5123
