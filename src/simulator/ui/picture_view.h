#pragma once

#include <QImage>
#include <QWidget>

namespace qv5123 {

/// A picture at the top, as large as the widget allows at its own proportions.
class PictureView final : public QWidget {
  Q_OBJECT

 public:
  explicit PictureView(QWidget* parent = nullptr);

  void set_picture(const QImage& picture);
  const QImage& picture() const { return picture_; }
  /// Of the picture within the widget; empty before the first.
  QRect place() const;
  QSize sizeHint() const override { return {480, 270}; }
  QSize minimumSizeHint() const override { return {160, 90}; }

 signals:
  /// A place in the picture, 0 up to 1 across and down.
  void clicked(QPointF place);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  QImage picture_;
};

}  // namespace qv5123
