#pragma once

#include <QRectF>

#include "tuning/gamma_chart.h"

namespace qv5123 {

/// Of the chart's pixels as the painter has them.
inline QRectF rect_of(const ChartBox& box) {
  return {QPointF(box.left, box.top), QPointF(box.right, box.bottom)};
}
inline QPointF point_of(ChartPixel pixel) {
  return {static_cast<double>(pixel.x), static_cast<double>(pixel.y)};
}
inline QRectF plot_rect() {
  return rect_of(kGammaPlot);
}

}  // namespace qv5123
