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

  /// Nothing when no grey has been measured: only the references are shown then. `second` is that of another
  /// matrix, shown beside it.
  void show_report(const std::optional<PatchReport>& report,
                   const std::optional<PatchReport>& second = std::nullopt);
  /// "mean 8.1 → 2.3   median ...   worst ..."; with a second report "8.1 → 2.3 | 1.9"; empty without any.
  QString summary() const;
  /// Reference, measured and corrected colour of each patch with its differences, a line for each.
  QString numbers() const;
  /// The patch at a point of the widget with its differences; empty beside the patches.
  QString text_at(QPointF point) const;
  /// Where the patch is drawn, its difference included.
  QRectF cell(std::size_t patch) const;

  QSize sizeHint() const override { return {600, 250}; }
  QSize minimumSizeHint() const override { return {420, 150}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void paint_patch(QPainter& painter, std::size_t patch) const;
  double line_height() const;

  QString change(double before, double after, const double* other) const;
  QString change_of(std::size_t patch) const;

  std::optional<PatchReport> report_;
  std::optional<PatchReport> second_;
};

}  // namespace qv5123
