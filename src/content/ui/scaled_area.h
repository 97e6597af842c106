#pragma once

#include <QPointF>
#include <QRectF>
#include <QWidget>

namespace qv5123 {

/// A drawing area designed in pixels of a fixed size that grows with its window, keeping its proportions and
/// staying in the middle.
class ScaledArea : public QWidget {
  Q_OBJECT

 public:
  QSize sizeHint() const override { return design_ * 1.25; }
  QSize minimumSizeHint() const override { return design_; }

  /// Widget pixels per pixel of the design.
  double scale() const;
  /// The pixel of the design under a point of the widget; outside the design as well.
  QPoint to_design(QPointF point) const;
  /// Where a rectangle of the design stands in the widget, on whole pixels so that edges are sharp.
  QRect to_widget(const QRectF& design) const;

 protected:
  /// `design`: size of the whole design.
  ScaledArea(QSize design, QWidget* parent);

 private:
  QPointF origin() const;

  QSize design_;
};

}  // namespace qv5123
