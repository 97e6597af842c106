#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "content/glyph.h"

namespace qv5123 {

/// The camera's on-screen-display font: 1024 glyphs in four pages of 256.
///
/// Its binary file has no header: glyph after glyph, 24 rows of 16 pixels each, a row as a word with the high
/// byte first and its leftmost pixel in the highest bit. A glyph that begins "0f f0 30 0c" has its middle
/// eight pixels set in row 0, and two on either side in row 1. Glyph 1 begins at byte 48.
class FontLibrary {
 public:
  static constexpr int kGlyphs = 1024;
  static constexpr int kPageGlyphs = 256;
  static constexpr int kPages = kGlyphs / kPageGlyphs;
  static constexpr std::size_t kGlyphBytes = Glyph::kHeight * 2;
  /// The binary font file: no header, glyph g at byte g x 48, its rows as 16-bit words, high byte first.
  static constexpr std::size_t kBinarySize = kGlyphs * kGlyphBytes;
  /// A record has a spare row after its 24 pixel rows: the text import stores there what it reads one line
  /// late.
  static constexpr std::size_t kRowSlots = Glyph::kHeight + 1;

  struct Record {
    /// Set by the text import only; in no file.
    std::uint8_t number = 0;
    std::array<std::uint16_t, kRowSlots> rows{};
    /// Set by the text import only; in no file.
    bool defined = false;
    friend bool operator==(const Record&, const Record&) = default;
  };

  FontLibrary() : records_(kGlyphs) {}

  /// The glyph at `index`; an empty one outside 0..1023.
  Glyph glyph(int index) const;
  /// Replaces the pixels of a glyph; number, flag and spare row stay. An index outside 0..1023 is ignored.
  void set_glyph(int index, const Glyph& glyph);

  /// The record at `index`, 0..1023.
  const Record& record(int index) const { return records_.at(static_cast<std::size_t>(index)); }

  /// Stores one row as the text import does: `slot` 0..24 of glyph `index`, which becomes defined. Anything
  /// outside is ignored.
  void import_row(int index, int slot, std::uint16_t row);

  std::vector<std::uint8_t> to_binary() const;
  /// Replaces rows from the start of the library for as long as `bytes` lasts: glyphs after the end of a
  /// short file keep their content, a row cut in half is not stored, bytes after glyph 1023 are not read.
  void read_binary(std::span<const std::uint8_t> bytes);

  friend bool operator==(const FontLibrary&, const FontLibrary&) = default;

 private:
  static bool contains(int index) { return index >= 0 && index < kGlyphs; }

  std::vector<Record> records_;
};

}  // namespace qv5123
