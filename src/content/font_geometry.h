#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "content/font_library.h"
#include "content/glyph.h"

namespace qv5123 {

/// Where things stand in the font editor's two drawing areas, in pixels of the areas as they were designed,
/// from each area's top left. The window draws them scaled and scales the pointer back.

/// The page preview: a white area with 16 x 16 glyphs at actual size between black grid lines.
namespace preview {
inline constexpr int kLeft = 10;
inline constexpr int kTop = 10;
/// The white area ends before these; its last column and row hold the last grid lines.
inline constexpr int kRight = 283;
inline constexpr int kBottom = 411;
inline constexpr int kColumns = 16;
inline constexpr int kRows = 16;
/// Grid line to grid line: a glyph and its line.
inline constexpr int kColumnStep = Glyph::kWidth + 1;
inline constexpr int kRowStep = Glyph::kHeight + 1;
/// The whole drawing area, with the same margin all round.
inline constexpr int kWidth = kRight + kLeft;
inline constexpr int kHeight = kBottom + kTop;

/// The glyph of the page, 0..255, under the point; nothing beside the grid.
std::optional<int> glyph_at(int x, int y);
}  // namespace preview

/// The glyph editor: the glyph at actual size, and enlarged to 8 x 8 cells in a grey grid.
namespace editor {
inline constexpr int kActualLeft = 10;
inline constexpr int kActualTop = 100;
inline constexpr int kGridLeft = 40;
inline constexpr int kGridTop = 10;
inline constexpr int kCell = 8;
inline constexpr int kGridRight = kGridLeft + kCell * Glyph::kWidth;
inline constexpr int kGridBottom = kGridTop + kCell * Glyph::kHeight;
static_assert(kGridRight == 168 && kGridBottom == 202);
inline constexpr int kWidth = kGridRight + 1 + 10;
inline constexpr int kHeight = kGridBottom + 1 + 10;

/// The pixel under the point; nothing beside the grid and on its right and bottom border lines, which are no
/// part of any cell.
std::optional<GlyphPixel> pixel_at(int x, int y);
/// The cell of the grid, thought of as going on beyond its borders: a stroke may leave it and come back.
GlyphPixel cell_at(int x, int y);
}  // namespace editor

/// A drawing in shades of grey.
struct GreyImage {
  int width = 0;
  int height = 0;
  /// 0 black .. 255 white, row after row, `width` bytes each.
  std::vector<std::uint8_t> pixels;

  std::uint8_t at(int x, int y) const { return pixels.at(static_cast<std::size_t>(y) * width + x); }
};

/// Draws page 0..3 of the library in the preview's geometry, on `background` outside the white area.
GreyImage draw_preview(const FontLibrary& library, int page, std::uint8_t background);

}  // namespace qv5123
