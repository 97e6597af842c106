#pragma once

#include <QPointF>
#include <QString>
#include <QTransform>
#include <QWidget>
#include <array>
#include <vector>

#include "tuning/awb_chart.h"

namespace qv5123 {

/// The white-detection chart: the lines A to F and the measured patches in the Cb/Y-Cr/Y plane. It grows with
/// the page and keeps its proportions. Its colours are part of what it says, so they are the same in every
/// palette.
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

  QSize sizeHint() const override { return {430, 430}; }
  QSize minimumSizeHint() const override { return {260, 260}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  QTransform transform() const;
  void paint_frame(QPainter& painter) const;
  void paint_lines(QPainter& painter) const;
  void paint_patches(QPainter& painter) const;

  AwbValues values_;
  std::array<ChartLine, 6> lines_;
  std::vector<ChartPatch> patches_;
};

}  // namespace qv5123
