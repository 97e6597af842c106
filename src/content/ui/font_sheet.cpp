#include "content/ui/font_sheet.h"

#include <QBuffer>
#include <QImageReader>

namespace qv5123 {
namespace {

constexpr int kDark = 128;

QPoint corner(int glyph) {
  return {glyph % kSheetColumns * Glyph::kWidth, glyph / kSheetColumns * Glyph::kHeight};
}

/// Calls `does` with each pixel of a glyph and where it stands in the sheet.
template <class Does>
void each_pixel(int glyph, Does does) {
  for (int row = 0; row < Glyph::kHeight; ++row)
    for (int column = 0; column < Glyph::kWidth; ++column)
      does(GlyphPixel{column, row}, corner(glyph) + QPoint(column, row));
}

bool is_drawn(QRgb pixel) {
  return qAlpha(pixel) >= kDark && qGray(pixel) < kDark;
}

}  // namespace

QImage font_sheet(const FontLibrary& library) {
  QImage sheet(kSheetSize, QImage::Format_Grayscale8);
  sheet.fill(Qt::white);
  for (int glyph = 0; glyph < FontLibrary::kGlyphs; ++glyph) {
    const Glyph shown = library.glyph(glyph);
    each_pixel(glyph, [&](GlyphPixel pixel, QPoint at) {
      if (shown.pixel(pixel)) sheet.scanLine(at.y())[at.x()] = 0;
    });
  }
  return sheet;
}

QByteArray font_sheet_file(const FontLibrary& library) {
  QByteArray file;
  QBuffer buffer(&file);
  buffer.open(QIODevice::WriteOnly);
  font_sheet(library).convertToFormat(QImage::Format_Mono).save(&buffer, "PNG");
  return file;
}

std::optional<std::vector<Glyph>> glyphs_of_sheet(const QByteArray& file) {
  QByteArray bytes = file;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  // Before any of it is unpacked.
  if (reader.size() != kSheetSize) return std::nullopt;
  const QImage sheet = reader.read().convertToFormat(QImage::Format_ARGB32);
  if (sheet.size() != kSheetSize) return std::nullopt;
  std::vector<Glyph> glyphs(FontLibrary::kGlyphs);
  for (int glyph = 0; glyph < FontLibrary::kGlyphs; ++glyph) {
    each_pixel(glyph, [&](GlyphPixel pixel, QPoint at) {
      glyphs[static_cast<std::size_t>(glyph)].set_pixel(pixel, is_drawn(sheet.pixel(at)));
    });
  }
  return glyphs;
}

}  // namespace qv5123
