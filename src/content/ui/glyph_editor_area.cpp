#include "content/ui/glyph_editor_area.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "content/font_geometry.h"

namespace qv5123 {

namespace {

using namespace editor;

const QColor kGridGrey(0x80, 0x80, 0x80);

}  // namespace

GlyphEditorArea::GlyphEditorArea(FontEditor& editor, QWidget* parent)
    : ScaledArea(QSize(kWidth, kHeight), parent), editor_(editor) {
  setAccessibleName("Glyph editor");
  setToolTip("Click a pixel to toggle it, drag to paint; arrow keys and space bar do the same");
}

void GlyphEditorArea::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paint_grid(painter);
  paint_pixels(painter);
  if (!hasFocus()) return;
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRect(
      to_widget(QRectF(kGridLeft + kCell * cursor_.column, kGridTop + kCell * cursor_.row, kCell, kCell)));
}

void GlyphEditorArea::paint_grid(QPainter& painter) const {
  painter.fillRect(to_widget(QRectF(kActualLeft, kActualTop, Glyph::kWidth, Glyph::kHeight)), Qt::white);
  const QRect grid = to_widget(QRectF(kGridLeft, kGridTop, kGridRight - kGridLeft, kGridBottom - kGridTop));
  painter.fillRect(grid, Qt::white);
  for (int i = 0; i <= Glyph::kWidth; ++i) {
    const int x = to_widget(QRectF(kGridLeft + kCell * i, 0, 1, 1)).left();
    painter.fillRect(QRect(x, grid.top(), 1, grid.height() + 1), kGridGrey);
  }
  for (int j = 0; j <= Glyph::kHeight; ++j) {
    const int y = to_widget(QRectF(0, kGridTop + kCell * j, 1, 1)).top();
    painter.fillRect(QRect(grid.left(), y, grid.width() + 1, 1), kGridGrey);
  }
}

void GlyphEditorArea::paint_pixels(QPainter& painter) const {
  for (int r = 0; r < Glyph::kHeight; ++r) {
    for (int c = 0; c < Glyph::kWidth; ++c) {
      if (!editor_.buffer().pixel({c, r})) continue;
      // A square from 2 to 7 in its cell, outlined with a pen 2 wide: all of the cell but its grid lines.
      painter.fillRect(to_widget(QRectF(kGridLeft + kCell * c + 1, kGridTop + kCell * r + 1, 7, 7)),
                       Qt::black);
      painter.fillRect(to_widget(QRectF(kActualLeft + c, kActualTop + r, 1, 1)), Qt::black);
    }
  }
}

std::optional<GlyphPixel> GlyphEditorArea::pixel_at(QPointF point) const {
  const QPoint design = to_design(point);
  return editor::pixel_at(design.x(), design.y());
}

void GlyphEditorArea::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  pressed_ = pixel_at(event->position());
  stroke_begun_ = false;
}

void GlyphEditorArea::mouseMoveEvent(QMouseEvent* event) {
  if (!pressed_ || !(event->buttons() & Qt::LeftButton)) return;
  const QPoint point = to_design(event->position());
  const GlyphPixel cell = cell_at(point.x(), point.y());
  if (!editor_.in_stroke()) {
    // Undone or replaced meanwhile, it is over.
    if (stroke_begun_ || cell == *pressed_) return;
    editor_.begin_stroke(*pressed_);
    stroke_begun_ = true;
  }
  editor_.continue_stroke(cell);
  emit edited();
}

void GlyphEditorArea::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  pressed_.reset();
  if (editor_.in_stroke()) {
    editor_.end_stroke();
    emit edited();
  } else if (const auto pixel = pixel_at(event->position()); pixel && !stroke_begun_) {
    toggle(*pixel);
  }
}

void GlyphEditorArea::toggle(GlyphPixel pixel) {
  cursor_ = pixel;
  editor_.toggle_pixel(pixel);
  emit edited();
}

void GlyphEditorArea::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() & Qt::ControlModifier) return QWidget::keyPressEvent(event);
  if (event->key() == Qt::Key_Space) return toggle(cursor_);
  if (!move_cursor(event->key())) QWidget::keyPressEvent(event);
}

bool GlyphEditorArea::move_cursor(int key) {
  GlyphPixel moved = cursor_;
  if (key == Qt::Key_Left) --moved.column;
  if (key == Qt::Key_Right) ++moved.column;
  if (key == Qt::Key_Up) --moved.row;
  if (key == Qt::Key_Down) ++moved.row;
  if (moved == cursor_) return false;
  if (Glyph::contains(moved)) cursor_ = moved;
  update();
  return true;
}

}  // namespace qv5123
