#include "content/font_library.h"

#include <gtest/gtest.h>

#include <string>

#include "content/font_text.h"

namespace qv5123 {
namespace {

/// A different word for every row of the library, none of them 0.
std::uint16_t pattern(int glyph, int row) {
  return static_cast<std::uint16_t>((glyph * 24 + row) * 2654435761U >> 16 | 1U);
}

FontLibrary patterned() {
  FontLibrary library;
  for (int g = 0; g < FontLibrary::kGlyphs; ++g) {
    Glyph::Rows rows;
    for (int r = 0; r < Glyph::kHeight; ++r) rows[static_cast<std::size_t>(r)] = pattern(g, r);
    library.set_glyph(g, Glyph(rows));
  }
  return library;
}

std::string line(int number) {
  return "0x0F, 0xF0,     // ----########----" + (number < 0 ? "" : std::to_string(number)) + "\r\n";
}

TEST(FontLibrary, BinaryIsBigEndianWithoutHeaderAndOneOfAnotherLengthFillsWhatItCan) {
  const auto bytes = patterned().to_binary();
  ASSERT_EQ(bytes.size(), 49152u);
  EXPECT_EQ(bytes[777 * 48 + 2 * 5], pattern(777, 5) >> 8);
  EXPECT_EQ(bytes[777 * 48 + 2 * 5 + 1], pattern(777, 5) & 0xFF);
  FontLibrary reopened;
  reopened.read_binary(bytes);
  EXPECT_EQ(reopened, patterned());

  reopened.read_binary(std::vector<std::uint8_t>(48 + 5, 0xAB));
  EXPECT_EQ(reopened.glyph(1).rows()[1], 0xABAB);
  EXPECT_EQ(reopened.glyph(1).rows()[2], pattern(1, 2)) << "a row cut in half is not stored";
  reopened.read_binary(std::vector<std::uint8_t>(FontLibrary::kBinarySize + 3, 0xCD));
  EXPECT_EQ(reopened.glyph(1023).rows()[23], 0xCDCD);
  EXPECT_EQ(reopened.record(1023).rows[24], 0) << "the spare row is no part of the file";
}

TEST(FontText, LinesAreAsStated) {
  FontLibrary library;
  Glyph::Rows rows{};
  rows.fill(0x0FF0);
  library.set_glyph(0, Glyph(rows));
  library.set_glyph(257, Glyph(rows));
  const auto text = export_font_text(library);
  std::string first_glyph = line(0);
  for (int row = 1; row < 24; ++row) first_glyph += line(-1);
  first_glyph += "\r\n\r\n";
  const std::string second = "0x00, 0x00,     // ----------------1\r\n";
  EXPECT_EQ(text.substr(0, first_glyph.size() + second.size()), first_glyph + second);
  EXPECT_NE(text.find(line(1)), std::string::npos) << "glyph 257 is numbered 1 again";
  // 1024 glyphs of 24 lines of 37 bytes and two empty lines; 10, 90 and 156 numbers of 1, 2, 3 digits a page.
  EXPECT_EQ(text.size(), 1024u * (24 * 37 + 4) + 4 * (10 + 90 * 2 + 156 * 3));
}

TEST(FontText, ImportOfBrokenTextStoresWhatFitsAndEnds) {
  const auto imported = [](const std::string& text) {
    FontLibrary library;
    import_font_text(text, library);
    return library;
  };
  EXPECT_EQ(imported(""), FontLibrary());
  EXPECT_FALSE(imported("0x12, 0x34,     // ").record(0).defined) << "a line without its pixels is none";
  EXPECT_EQ(imported("0x1, 0xab, // -").glyph(0).rows()[0], 0x01AB) << "one digit is a number too";
  const auto words = imported("0x12, 0x34, // -\r\nno number here\r\n");
  EXPECT_EQ(words.glyph(0).rows()[1], 0x1234) << "what does not match leaves the bytes as they were";
  std::string endless;
  for (int n = 0; n < 24 * 1024 + 100; ++n) endless += "0xFF, 0xFF, // #\r\n";
  EXPECT_EQ(imported(endless).record(1023).rows[24], 0xFFFF);
}

}  // namespace
}  // namespace qv5123
