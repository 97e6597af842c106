#include "content/ui/font_text_view.h"

#include <QPainter>

namespace qv5123 {
namespace {

constexpr int kScale = 2;
constexpr int kMargin = 2;

}  // namespace

FontTextView::FontTextView(const FontEditor& editor, QWidget* parent) : QWidget(parent), editor_(editor) {
  setAccessibleName("Text in this font");
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void FontTextView::show_text(const QString& text) {
  text_ = text;
  update();
}

QSize FontTextView::sizeHint() const {
  return {16 * Glyph::kWidth * kScale, Glyph::kHeight * kScale + 2 * kMargin};
}

QSize FontTextView::minimumSizeHint() const {
  return {4 * Glyph::kWidth * kScale, sizeHint().height()};
}

Glyph FontTextView::glyph(int index) const {
  if (index == editor_.selected()) return editor_.buffer();
  return editor_.library().glyph(editor_.page() * FontLibrary::kPageGlyphs + index);
}

void FontTextView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  const QColor ink = palette().color(QPalette::Text);
  int left = kMargin;
  for (const QChar character : text_) {
    const Glyph shown = character.unicode() < FontLibrary::kPageGlyphs ? glyph(character.unicode()) : Glyph();
    for (int row = 0; row < Glyph::kHeight; ++row)
      for (int column = 0; column < Glyph::kWidth; ++column)
        if (shown.pixel({column, row}))
          painter.fillRect(left + column * kScale, kMargin + row * kScale, kScale, kScale, ink);
    left += Glyph::kWidth * kScale;
    if (left > width()) break;
  }
}

}  // namespace qv5123
