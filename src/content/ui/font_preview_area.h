#pragma once

#include <QImage>

#include "content/font_editor.h"
#include "content/ui/scaled_area.h"

namespace qv5123 {

/// The page of 256 glyphs, where the user picks one with the mouse or the arrow keys.
class FontPreviewArea : public ScaledArea {
  Q_OBJECT

 public:
  /// `editor` must outlive the area.
  explicit FontPreviewArea(const FontEditor& editor, QWidget* parent = nullptr);

  /// Draws the page anew after its glyphs or the page changed.
  void refresh_page();

 signals:
  /// The glyph, 0..255 of the page, that the user picked.
  void glyph_picked(int index);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void paint_differing(QPainter& painter) const;

  const FontEditor& editor_;
  QImage page_;  // null until drawn
};

}  // namespace qv5123
