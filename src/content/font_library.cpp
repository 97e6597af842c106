#include "content/font_library.h"

#include <algorithm>

namespace qv5123 {

Glyph FontLibrary::glyph(int index) const {
  if (!contains(index)) return {};
  Glyph::Rows rows;
  std::copy_n(record(index).rows.begin(), rows.size(), rows.begin());
  return Glyph(rows);
}

void FontLibrary::set_glyph(int index, const Glyph& glyph) {
  if (!contains(index)) return;
  std::ranges::copy(glyph.rows(), records_[static_cast<std::size_t>(index)].rows.begin());
}

void FontLibrary::import_row(int index, int slot, std::uint16_t row) {
  if (!contains(index) || slot < 0 || slot >= static_cast<int>(kRowSlots)) return;
  auto& record = records_[static_cast<std::size_t>(index)];
  record.number = static_cast<std::uint8_t>(index & 0xFF);
  record.rows[static_cast<std::size_t>(slot)] = row;
  record.defined = true;
}

std::vector<std::uint8_t> FontLibrary::to_binary() const {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kBinarySize);
  for (int index = 0; index < kGlyphs; ++index) {
    for (const auto row : glyph(index).rows()) {
      bytes.push_back(static_cast<std::uint8_t>(row >> 8));
      bytes.push_back(static_cast<std::uint8_t>(row & 0xFF));
    }
  }
  return bytes;
}

void FontLibrary::read_binary(std::span<const std::uint8_t> bytes) {
  const std::size_t rows = std::min(bytes.size(), kBinarySize) / 2;
  for (std::size_t i = 0; i < rows; ++i) {
    auto& record = records_[i / Glyph::kHeight];
    record.rows[i % Glyph::kHeight] = static_cast<std::uint16_t>(bytes[2 * i] * 256 + bytes[2 * i + 1]);
  }
}

}  // namespace qv5123
