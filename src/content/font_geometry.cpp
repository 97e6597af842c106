#include "content/font_geometry.h"

#include <algorithm>

namespace qv5123 {

namespace {

constexpr std::uint8_t kBlack = 0;
constexpr std::uint8_t kWhite = 255;

void fill(GreyImage& image, int left, int top, int width, int height, std::uint8_t shade) {
  for (int y = top; y < top + height; ++y) {
    std::fill_n(image.pixels.begin() + y * image.width + left, width, shade);
  }
}

void draw_grid(GreyImage& image) {
  using namespace preview;
  for (int i = 0; i <= kColumns; ++i) fill(image, kLeft + kColumnStep * i, kTop, 1, kBottom - kTop, kBlack);
  for (int j = 0; j <= kRows; ++j) fill(image, kLeft, kTop + kRowStep * j, kRight - kLeft, 1, kBlack);
}

void draw_glyph(GreyImage& image, int left, int top, const Glyph& glyph) {
  for (int row = 0; row < Glyph::kHeight; ++row) {
    const auto line = image.pixels.begin() + (top + row) * image.width + left;
    for (int column = 0; column < Glyph::kWidth; ++column) {
      if (glyph.pixel({column, row})) line[column] = kBlack;
    }
  }
}

}  // namespace

std::optional<int> preview::glyph_at(int x, int y) {
  if (x < kLeft || y < kTop) return std::nullopt;
  const int column = (x - kLeft) / kColumnStep;
  const int row = (y - kTop) / kRowStep;
  if (column >= kColumns || row >= kRows) return std::nullopt;
  return row * kColumns + column;
}

std::optional<GlyphPixel> editor::pixel_at(int x, int y) {
  const auto cell = cell_at(x, y);
  return Glyph::contains(cell) ? std::optional(cell) : std::nullopt;
}

GlyphPixel editor::cell_at(int x, int y) {
  const auto floored = [](int distance) { return (distance < 0 ? distance - kCell + 1 : distance) / kCell; };
  return {floored(x - kGridLeft), floored(y - kGridTop)};
}

GreyImage draw_preview(const FontLibrary& library, int page, std::uint8_t background) {
  using namespace preview;
  GreyImage image{kWidth, kHeight, std::vector<std::uint8_t>(std::size_t{kWidth} * kHeight, background)};
  fill(image, kLeft, kTop, kRight - kLeft, kBottom - kTop, kWhite);
  draw_grid(image);
  for (int i = 0; i < FontLibrary::kPageGlyphs; ++i) {
    draw_glyph(image, kLeft + 1 + kColumnStep * (i % kColumns), kTop + 1 + kRowStep * (i / kColumns),
               library.glyph(page * FontLibrary::kPageGlyphs + i));
  }
  return image;
}

}  // namespace qv5123
