#include "content/ui/scaled_area.h"

#include <algorithm>
#include <cmath>

#include "base/saturate.h"

namespace qv5123 {

ScaledArea::ScaledArea(QSize design, QWidget* parent) : QWidget(parent), design_(design) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setFocusPolicy(Qt::StrongFocus);
}

double ScaledArea::scale() const {
  const double fit = std::min(width() / static_cast<double>(design_.width()),
                              height() / static_cast<double>(design_.height()));
  return std::max(fit, 0.01);
}

QPointF ScaledArea::origin() const {
  return {std::floor((width() - design_.width() * scale()) / 2),
          std::floor((height() - design_.height() * scale()) / 2)};
}

QPoint ScaledArea::to_design(QPointF point) const {
  const QPointF design = (point - origin()) / scale();
  return {saturate_to_int(std::floor(design.x())), saturate_to_int(std::floor(design.y()))};
}

QRect ScaledArea::to_widget(const QRectF& design) const {
  const QPointF top_left = design.topLeft() * scale() + origin();
  const QPointF bottom_right = design.bottomRight() * scale() + origin();
  return {QPoint(qRound(top_left.x()), qRound(top_left.y())),
          QPoint(qRound(bottom_right.x()) - 1, qRound(bottom_right.y()) - 1)};
}

}  // namespace qv5123
