#include "simulator/ui/picture_view.h"

#include <QMouseEvent>
#include <QPainter>

namespace qv5123 {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PictureView::set_picture(const QImage& picture) {
  picture_ = picture;
  update();
}

QRect PictureView::place() const {
  QRect place(QPoint(), picture_.size().scaled(size(), Qt::KeepAspectRatio));
  place.moveLeft((width() - place.width()) / 2);
  return place;
}

void PictureView::paintEvent(QPaintEvent*) {
  if (picture_.isNull()) return;
  QPainter painter(this);
  painter.drawImage(place(), picture_);
}

void PictureView::mousePressEvent(QMouseEvent* event) {
  const QRect shown = place();
  if (picture_.isNull() || event->button() != Qt::LeftButton || !shown.contains(event->pos())) return;
  const QPointF within = event->position() - shown.topLeft();
  emit clicked({within.x() / shown.width(), within.y() / shown.height()});
}

}  // namespace qv5123
