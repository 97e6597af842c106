#include "content/glyph.h"

#include <gtest/gtest.h>

#include <limits>

#include "content/font_geometry.h"

namespace qv5123 {
namespace {

Glyph glyph_with(std::initializer_list<GlyphPixel> pixels) {
  Glyph glyph;
  for (const auto pixel : pixels) glyph.set_pixel(pixel, true);
  return glyph;
}

TEST(Glyph, ShiftsLoseWhatLeavesAndBringClearPixelsIn) {
  const auto corners = glyph_with({{0, 0}, {15, 0}, {0, 23}, {15, 23}});
  const auto shifted = [&corners](ShiftDirection direction) {
    auto glyph = corners;
    glyph.shift(direction);
    return glyph;
  };
  EXPECT_EQ(shifted(ShiftDirection::left), glyph_with({{14, 0}, {14, 23}}));
  EXPECT_EQ(shifted(ShiftDirection::right), glyph_with({{1, 0}, {1, 23}}));
  EXPECT_EQ(shifted(ShiftDirection::up), glyph_with({{0, 22}, {15, 22}}));
  EXPECT_EQ(shifted(ShiftDirection::down), glyph_with({{0, 1}, {15, 1}}));
}

TEST(Glyph, LinesHaveNoGapsAndMayLeaveTheGlyph) {
  Glyph glyph;
  glyph.draw_line({2, 3}, {2, 3}, true);
  EXPECT_EQ(glyph, glyph_with({{2, 3}}));
  glyph.draw_line({2, 3}, {4, 7}, true);
  EXPECT_EQ(glyph, glyph_with({{2, 3}, {2, 4}, {3, 5}, {3, 6}, {4, 7}}));
  glyph.draw_line({-5, 5}, {20, 5}, false);
  EXPECT_EQ(glyph, glyph_with({{2, 3}, {2, 4}, {3, 6}, {4, 7}}));
  const auto before = glyph;
  constexpr int kFar = std::numeric_limits<int>::max();
  glyph.draw_line({-kFar, -kFar}, {kFar, kFar}, true);
  EXPECT_EQ(glyph, before);
}

TEST(FontGeometry, PreviewHitsAreCellsOfSeventeenByTwentyFive) {
  EXPECT_EQ(preview::glyph_at(26, 34), 0);
  EXPECT_EQ(preview::glyph_at(27, 34), 1);
  EXPECT_EQ(preview::glyph_at(26, 35), 16);
  EXPECT_EQ(preview::glyph_at(281, 409), 255);
  EXPECT_FALSE(preview::glyph_at(282, 409));
  EXPECT_FALSE(preview::glyph_at(281, 410));
  EXPECT_FALSE(preview::glyph_at(9, 10)) << "truncating division must not let the left margin in";
  EXPECT_FALSE(preview::glyph_at(10, 9));
}

}  // namespace
}  // namespace qv5123
