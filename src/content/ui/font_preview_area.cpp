#include "content/ui/font_preview_area.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>

#include "content/font_geometry.h"

namespace qv5123 {

namespace {

/// The amber of values that were not sent.
const QColor kDifferingColour(0xE0, 0x90, 0x00);

/// How far a key moves the selection; 0 if it doesn't.
int key_step(int key) {
  switch (key) {
    case Qt::Key_Left:
      return -1;
    case Qt::Key_Right:
      return 1;
    case Qt::Key_Up:
      return -preview::kColumns;
    case Qt::Key_Down:
      return preview::kColumns;
    default:
      return 0;
  }
}

QImage draw_page(const FontEditor& editor, const QColor& background) {
  const auto drawn =
      draw_preview(editor.library(), editor.page(), static_cast<std::uint8_t>(qGray(background.rgb())));
  return QImage(drawn.pixels.data(), drawn.width, drawn.height, drawn.width, QImage::Format_Grayscale8)
      .copy();
}

QRectF cell(int index) {
  const int row = index / preview::kColumns;
  return QRectF(preview::kLeft + index % preview::kColumns * preview::kColumnStep,
                preview::kTop + row * preview::kRowStep, preview::kColumnStep + 1, preview::kRowStep + 1);
}

}  // namespace

FontPreviewArea::FontPreviewArea(const FontEditor& editor, QWidget* parent)
    : ScaledArea(QSize(preview::kWidth, preview::kHeight), parent), editor_(editor) {
  setAccessibleName("Font page preview");
  setToolTip(
      "Click a glyph to edit it; the arrow keys pick its neighbours. A corner is marked where a glyph is not "
      "as in the "
      "font file, or as in the one compared with.");
}

void FontPreviewArea::refresh_page() {
  page_ = QImage();
  update();
}

void FontPreviewArea::paintEvent(QPaintEvent*) {
  if (page_.isNull()) page_ = draw_page(editor_, palette().color(QPalette::Window));
  QPainter painter(this);
  // At whole multiples of the screen's own pixels nothing is to be smoothed.
  const double factor = scale() * devicePixelRatioF();
  painter.setRenderHint(QPainter::SmoothPixmapTransform, std::abs(factor - std::round(factor)) > 0.001);
  const QRectF white_area(preview::kLeft, preview::kTop, preview::kRight - preview::kLeft,
                          preview::kBottom - preview::kTop);
  painter.drawImage(to_widget(white_area), page_, white_area);
  paint_differing(painter);
  painter.setPen(QPen(palette().color(QPalette::Highlight), hasFocus() ? 3 : 2));
  painter.drawRect(to_widget(cell(editor_.selected())));
}

void FontPreviewArea::paint_differing(QPainter& painter) const {
  constexpr double kMark = 6;  // pixels of the design
  painter.setPen(Qt::NoPen);
  painter.setBrush(kDifferingColour);
  const int first = editor_.page() * FontLibrary::kPageGlyphs;
  for (int index = 0; index < FontLibrary::kPageGlyphs; ++index) {
    if (!editor_.differs(first + index)) continue;
    const QRectF place = to_widget(cell(index));
    const double mark = kMark * scale();
    const QPointF corner = place.topRight();
    painter.drawPolygon(QPolygonF{{corner, corner - QPointF(mark, 0), corner + QPointF(0, mark)}});
  }
  painter.setBrush(Qt::NoBrush);
}

void FontPreviewArea::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QPoint point = to_design(event->position());
  if (const auto index = preview::glyph_at(point.x(), point.y())) emit glyph_picked(*index);
}

void FontPreviewArea::keyPressEvent(QKeyEvent* event) {
  const int step = event->modifiers() & Qt::ControlModifier ? 0 : key_step(event->key());
  if (step == 0) return QWidget::keyPressEvent(event);
  const int index = editor_.selected() + step;
  if (index >= 0 && index < FontLibrary::kPageGlyphs) emit glyph_picked(index);
}

void FontPreviewArea::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) refresh_page();
  QWidget::changeEvent(event);
}

}  // namespace qv5123
