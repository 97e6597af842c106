#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv5123 {

/// A pixel of a glyph: column 0..15 from the left, row 0..23 from the top.
struct GlyphPixel {
  int column = 0;
  int row = 0;
  friend bool operator==(const GlyphPixel&, const GlyphPixel&) = default;
};

enum class ShiftDirection { left, right, up, down };

/// One character of the on-screen display: 16 x 24 pixels, one bit each.
class Glyph {
 public:
  static constexpr int kWidth = 16;
  static constexpr int kHeight = 24;
  /// Rows from top to bottom; bit 15 is the leftmost pixel, a set bit is a drawn pixel.
  using Rows = std::array<std::uint16_t, kHeight>;

  Glyph() = default;
  explicit Glyph(const Rows& rows) : rows_(rows) {}

  const Rows& rows() const& { return rows_; }
  /// By value, so that `for (row : make_glyph().rows())` does not walk over rows that are gone.
  Rows rows() && { return rows_; }

  static bool contains(GlyphPixel pixel);
  /// Whether the pixel is drawn; false outside the glyph.
  bool pixel(GlyphPixel pixel) const;
  /// A pixel outside the glyph is ignored.
  void set_pixel(GlyphPixel pixel, bool drawn);
  void toggle_pixel(GlyphPixel pixel) { set_pixel(pixel, !this->pixel(pixel)); }
  /// Sets every pixel on the straight line between two pixels, both ends included; the parts of it outside
  /// the glyph are ignored.
  void draw_line(GlyphPixel from, GlyphPixel to, bool drawn);

  /// Moves the picture by one pixel. What leaves the glyph is lost, what enters is clear.
  void shift(ShiftDirection direction);
  void invert();
  void clear() { rows_.fill(0); }

  friend bool operator==(const Glyph&, const Glyph&) = default;

 private:
  Rows rows_{};
};

/// The 16 pixels of a row as '#' (drawn) and '-' (clear), left to right.
std::string row_picture(std::uint16_t row);

/// A glyph as 24 lines of `row_picture`, each ended by LF: the form in which glyphs go to the clipboard.
std::string glyph_picture(const Glyph& glyph);
/// Reads what `glyph_picture` wrote; blanks and CR around a line don't matter. Nothing if a line is not 16
/// characters of '#' and '-', or if there are not exactly 24 of them.
std::optional<Glyph> parse_glyph_picture(std::string_view text);

}  // namespace qv5123
