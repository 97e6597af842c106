#pragma once

#include <QWidget>

#include <optional>

#include "tuning/patch_report.h"

namespace qv5123 {

/// The chart's patches as they should look, as measured, and as the matrix makes them, with the colour
/// differences.
class PatchSwatchView : public QWidget {
  Q_OBJECT

 public:
  PatchSwatchView();

  /// Nothing when no grey has been measured: only the references are shown then.
  void show_report(const std::optional<PatchReport>& report);
  /// "mean 8.1 → 2.3   median ...   worst ..."; empty without a report.
  QString summary() const;
  /// The patch at a point of the widget with its differences; empty beside the patches.
  QString text_at(QPointF point) const;
  /// Where the patch is drawn, its difference included.
  QRectF cell(std::size_t patch) const;

  QSize sizeHint() const override { return {600, 250}; }
  QSize minimumSizeHint() const override { return {420, 190}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void paint_patch(QPainter& painter, std::size_t patch) const;
  double line_height() const;

  std::optional<PatchReport> report_;
};

}  // namespace qv5123
