#include "content/font_editor.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

Glyph filled(std::uint16_t row) {
  Glyph::Rows rows;
  rows.fill(row);
  return Glyph(rows);
}

TEST(FontEditor, UndoWalksBackThroughEveryKindOfStepAsFarAsItReaches) {
  FontEditor editor;
  for (std::size_t step = 0; step < GlyphHistory::kSteps + 1; ++step) editor.invert();
  editor.store();
  editor.select(9);
  editor.paste(filled(0x00FF));
  editor.undo();
  EXPECT_EQ(editor.selected_glyph(), 9);
  EXPECT_EQ(editor.buffer(), Glyph());
  editor.undo();
  EXPECT_EQ(editor.selected_glyph(), 0);
  EXPECT_EQ(editor.library(), FontLibrary());
  editor.redo();
  EXPECT_EQ(editor.library().glyph(0), filled(0xFFFF));
  editor.toggle_pixel({0, 0});
  EXPECT_FALSE(editor.can_redo()) << "a new step ends what could be done again";
  std::size_t undone = 0;
  for (; editor.can_undo(); ++undone) editor.undo();
  EXPECT_EQ(undone, GlyphHistory::kSteps);
}

TEST(FontEditor, ADraftBecomesAFontFileWithWhatWasDrawnInIt) {
  FontEditor editor;
  editor.fill(3, {filled(0x1234)});
  editor.select(9);
  editor.paste(filled(0x00FF));
  const std::string file = font_file_of(editor.draft());
  FontEditor opened;
  opened.open_binary({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
  EXPECT_EQ(opened.library().glyph(3), filled(0x1234));
  EXPECT_EQ(opened.library().glyph(9), filled(0x00FF));
  EXPECT_EQ(font_file_of("no draft"), "");
}

}  // namespace
}  // namespace qv5123
