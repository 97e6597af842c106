#pragma once

#include <optional>

#include "content/font_editor.h"
#include "content/ui/scaled_area.h"

namespace qv5123 {

/// The edit buffer at actual size and enlarged. A click toggles a pixel, dragging paints; the arrow keys move
/// a cursor whose pixel the space bar toggles.
class GlyphEditorArea : public ScaledArea {
  Q_OBJECT

 public:
  /// `editor` must outlive the area.
  explicit GlyphEditorArea(FontEditor& editor, QWidget* parent = nullptr);

 signals:
  /// The user changed the edit buffer.
  void edited();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void paint_grid(QPainter& painter) const;
  void paint_pixels(QPainter& painter) const;
  std::optional<GlyphPixel> pixel_at(QPointF point) const;
  void toggle(GlyphPixel pixel);
  bool move_cursor(int key);

  FontEditor& editor_;
  /// Where the button went down; a drag becomes a stroke once it leaves that pixel.
  std::optional<GlyphPixel> pressed_;
  bool stroke_begun_ = false;
  GlyphPixel cursor_;
};

}  // namespace qv5123
