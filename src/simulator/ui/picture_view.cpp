#include "simulator/ui/picture_view.h"

#include <QPainter>

namespace qv5123 {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PictureView::set_picture(const QImage& picture) {
  picture_ = picture;
  update();
}

void PictureView::paintEvent(QPaintEvent*) {
  if (picture_.isNull()) return;
  QRect place(QPoint(), picture_.size().scaled(size(), Qt::KeepAspectRatio));
  place.moveLeft((width() - place.width()) / 2);
  QPainter painter(this);
  painter.drawImage(place, picture_);
}

}  // namespace qv5123
