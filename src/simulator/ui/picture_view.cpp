#include "simulator/ui/picture_view.h"

#include <QPainter>

namespace qv5123 {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void PictureView::set_picture(const QImage& picture) {
  picture_ = picture;
  update();
}

void PictureView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::black);
  if (picture_.isNull()) return;
  QRect place(QPoint(), picture_.size().scaled(size(), Qt::KeepAspectRatio));
  place.moveCenter(rect().center());
  painter.drawImage(place, picture_);
}

}  // namespace qv5123
