#include "content/ui/glyph_rasterizer.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

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

namespace {

/// The font, condensed if the text is wider than a glyph. Scaling the drawing instead would drop columns of
/// pixels.
QFont squeezed(QFont font, const QString& text) {
  const double advance = QFontMetricsF(font).horizontalAdvance(text);
  if (advance > Glyph::kWidth) font.setStretch(std::max(1, static_cast<int>(100 * Glyph::kWidth / advance)));
  return font;
}

}  // namespace

Glyph rasterize(const QFont& font, char32_t character) {
  const QString text = QString::fromUcs4(&character, 1);
  const QFont fitting = squeezed(font, text);
  const QFontMetricsF metrics(fitting);
  const double room = Glyph::kWidth - metrics.horizontalAdvance(text);
  QImage image(Glyph::kWidth, Glyph::kHeight, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setFont(fitting);
  painter.setPen(Qt::black);
  painter.drawText(QPointF(std::floor(std::max(room, 0.0) / 2), std::round(metrics.ascent())), text);
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
