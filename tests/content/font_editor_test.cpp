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

TEST(FontEditor, GlyphsThatAreNotThereAreNeitherChosenNorFilled) {
  FontEditor editor;
  editor.choose_page(4);
  editor.select(256);
  EXPECT_EQ(editor.selected_glyph(), 0);
  editor.choose_page(3);
  editor.select(255);
  editor.fill(1022, {filled(1), filled(2), filled(3)});
  EXPECT_EQ(editor.buffer(), filled(2)) << "the buffer follows its glyph";
  editor.fill(-1, {filled(9)});
  editor.fill(1024, {filled(9)});
  editor.undo();
  EXPECT_EQ(editor.library(), FontLibrary());
}

}  // namespace
}  // namespace qv5123
