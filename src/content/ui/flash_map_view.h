#pragma once

#include <QWidget>

#include "content/flash_look.h"

namespace qv5123 {

/// Draws the flash as a bar for each of its four quarters, with what of it the files fill.
class FlashMapView final : public QWidget {
  Q_OBJECT

 public:
  explicit FlashMapView(QWidget* parent = nullptr);

  void show_look(FlashLook look);
  const FlashLook& look() const { return look_; }
  QSize minimumSizeHint() const override;
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  /// Tells the place under the mouse.
  bool event(QEvent* event) override;

 private:
  int bar_left() const;
  QRect bar(int quarter) const;
  /// Of `bytes` bytes from `offset` on, wide enough to be seen.
  QRect part(std::size_t offset, std::size_t bytes) const;
  void paint_quarter(QPainter& painter, int quarter) const;
  QString lines() const;

  FlashLook look_;
};

}  // namespace qv5123
