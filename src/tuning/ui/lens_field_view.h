#pragma once

#include <QWidget>

#include "tuning/lens_checks.h"

namespace qv5123 {

/// What "Check field" measured: for each colour the 9 x 5 places, from dark for the least to bright for
/// the most, and the ripple. Hidden until there is something to show.
class LensFieldView : public QWidget {
  Q_OBJECT

 public:
  LensFieldView();
  void show_field(const LensField& field);
  /// The readings, a line for each place, row by row.
  QString numbers() const;

  QSize sizeHint() const override { return {560, 110}; }
  QSize minimumSizeHint() const override { return {320, 90}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString caption(std::size_t colour) const;
  void paint_colour(QPainter& painter, const QRectF& area, std::size_t colour) const;

  LensField field_;
};

}  // namespace qv5123
