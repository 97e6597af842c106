#include "content/ui/glyph_rasterizer.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <algorithm>

namespace qv5123 {

QFont font_for_glyphs(QFont font) {
  // Each pixel is drawn or not; the font's own hints know better which than a threshold on grey.
  font.setStyleStrategy(static_cast<QFont::StyleStrategy>(QFont::NoAntialias | QFont::PreferMatch));
  font.setHintingPreference(QFont::PreferFullHinting);
  for (int size = Glyph::kHeight; size > 1; --size) {
    font.setPixelSize(size);
    if (QFontMetricsF(font).height() <= Glyph::kHeight) break;
  }
  return font;
}

Glyph rasterize(const QFont& font, char32_t character) {
  QImage image(Glyph::kWidth, Glyph::kHeight, QImage::Format_RGB32);
  image.fill(Qt::white);
  const QString text = QString::fromUcs4(&character, 1);
  const QFontMetricsF metrics(font);
  const double advance = std::max(metrics.horizontalAdvance(text), 1.0);
  QPainter painter(&image);
  painter.setFont(font);
  painter.setPen(Qt::black);
  if (advance > Glyph::kWidth) painter.scale(Glyph::kWidth / advance, 1);
  const int left = static_cast<int>(std::max(Glyph::kWidth - advance, 0.0) / 2);
  painter.drawText(QPointF(left, std::min<double>(qRound(metrics.ascent()), Glyph::kHeight)), text);
  painter.end();

  Glyph glyph;
  for (int row = 0; row < Glyph::kHeight; ++row) {
    for (int column = 0; column < Glyph::kWidth; ++column) {
      glyph.set_pixel({column, row}, qGray(image.pixel(column, row)) < 128);
    }
  }
  return glyph;
}

}  // namespace qv5123
