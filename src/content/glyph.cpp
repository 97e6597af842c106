#include "content/glyph.h"

#include <algorithm>
#include <cstdlib>

#include "base/text.h"

namespace qv5123 {

namespace {

std::uint16_t bit(int column) {
  return static_cast<std::uint16_t>(0x8000U >> column);
}

/// Whether a line between two coordinates can touch 0..limit-1 at all.
bool reaches(int from, int to, int limit) {
  return std::max(from, to) >= 0 && std::min(from, to) < limit;
}

std::optional<std::uint16_t> parse_row(std::string_view word) {
  if (word.size() != Glyph::kWidth || word.find_first_not_of("#-") != std::string_view::npos) return {};
  std::uint16_t row = 0;
  for (int column = 0; column < Glyph::kWidth; ++column) {
    if (word[static_cast<std::size_t>(column)] == '#') row = static_cast<std::uint16_t>(row | bit(column));
  }
  return row;
}

}  // namespace

bool Glyph::contains(GlyphPixel pixel) {
  return pixel.column >= 0 && pixel.column < kWidth && pixel.row >= 0 && pixel.row < kHeight;
}

bool Glyph::pixel(GlyphPixel pixel) const {
  return contains(pixel) && (rows_[static_cast<std::size_t>(pixel.row)] & bit(pixel.column)) != 0;
}

void Glyph::set_pixel(GlyphPixel pixel, bool drawn) {
  if (!contains(pixel)) return;
  auto& row = rows_[static_cast<std::size_t>(pixel.row)];
  row = static_cast<std::uint16_t>(drawn ? row | bit(pixel.column) : row & ~bit(pixel.column));
}

void Glyph::draw_line(GlyphPixel from, GlyphPixel to, bool drawn) {
  if (!reaches(from.column, to.column, kWidth) || !reaches(from.row, to.row, kHeight)) return;
  const std::int64_t columns = std::int64_t{to.column} - from.column;
  const std::int64_t rows = std::int64_t{to.row} - from.row;
  const std::int64_t steps = std::max(std::abs(columns), std::abs(rows));
  // Far ends come from a pointer dragged off the window; nobody drags over more than a few screens.
  if (steps > 65536) return;
  set_pixel(from, drawn);
  for (std::int64_t step = 1; step <= steps; ++step) {
    set_pixel({static_cast<int>(from.column + columns * step / steps),
               static_cast<int>(from.row + rows * step / steps)},
              drawn);
  }
}

void Glyph::shift(ShiftDirection direction) {
  switch (direction) {
    case ShiftDirection::left:
      for (auto& row : rows_) row = static_cast<std::uint16_t>(row << 1);
      break;
    case ShiftDirection::right:
      for (auto& row : rows_) row = static_cast<std::uint16_t>(row >> 1);
      break;
    case ShiftDirection::up:
      std::shift_left(rows_.begin(), rows_.end(), 1);
      rows_.back() = 0;
      break;
    case ShiftDirection::down:
      std::shift_right(rows_.begin(), rows_.end(), 1);
      rows_.front() = 0;
      break;
  }
}

void Glyph::invert() {
  for (auto& row : rows_) row = static_cast<std::uint16_t>(~row);
}

std::string row_picture(std::uint16_t row) {
  std::string picture;
  for (int column = 0; column < Glyph::kWidth; ++column) picture += (row & bit(column)) != 0 ? '#' : '-';
  return picture;
}

std::string glyph_picture(const Glyph& glyph) {
  std::string picture;
  for (const auto row : glyph.rows()) picture += row_picture(row) + '\n';
  return picture;
}

std::optional<Glyph> parse_glyph_picture(std::string_view text) {
  Glyph::Rows rows{};
  for (auto& row : rows) {
    const auto parsed = parse_row(take_word(text));
    if (!parsed) return std::nullopt;
    row = *parsed;
  }
  if (!take_word(text).empty()) return std::nullopt;
  return Glyph(rows);
}

}  // namespace qv5123
