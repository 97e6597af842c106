#include "content/font_editor.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

Glyph filled(std::uint16_t row) {
  Glyph::Rows rows;
  rows.fill(row);
  return Glyph(rows);
}

TEST(FontEditor, OpeningAFileGoesToThePagesFirstGlyphAndCanBeTakenBack) {
  FontEditor editor;
  editor.choose_page(1);
  editor.select(7);
  editor.invert();
  editor.open_binary(std::vector<std::uint8_t>(FontLibrary::kBinarySize, 0x11));
  EXPECT_EQ(editor.selected_glyph(), 256);
  EXPECT_EQ(editor.buffer(), filled(0x1111));
  editor.undo();
  EXPECT_EQ(editor.selected_glyph(), 256 + 7);
  EXPECT_EQ(editor.buffer(), filled(0xFFFF));
  EXPECT_EQ(editor.library(), FontLibrary());
  editor.redo();
  EXPECT_EQ(editor.selected_glyph(), 256);
  EXPECT_EQ(editor.library().glyph(1023), filled(0x1111));
}

TEST(FontEditor, UndoWalksBackThroughEveryKindOfStep) {
  FontEditor editor;
  editor.invert();
  editor.shift(ShiftDirection::kRight);
  editor.store();
  editor.select(9);
  editor.paste(filled(0x00FF));
  editor.clear();
  editor.undo();
  EXPECT_EQ(editor.buffer(), filled(0x00FF));
  editor.undo();
  EXPECT_EQ(editor.selected_glyph(), 9);
  EXPECT_EQ(editor.buffer(), Glyph());
  editor.undo();
  EXPECT_EQ(editor.selected_glyph(), 0);
  EXPECT_EQ(editor.library(), FontLibrary());
  EXPECT_EQ(editor.buffer(), filled(0x7FFF));
  editor.undo();
  editor.undo();
  EXPECT_FALSE(editor.can_undo());
  editor.undo();
  EXPECT_EQ(editor.buffer(), Glyph());
  editor.redo();
  EXPECT_EQ(editor.buffer(), filled(0xFFFF));
  editor.toggle_pixel({0, 0});
  EXPECT_FALSE(editor.can_redo()) << "a new step ends what could be done again";
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

TEST(FontEditor, HistoryForgetsTheOldestSteps) {
  FontEditor editor;
  for (std::size_t step = 0; step < GlyphHistory::kSteps + 3; ++step) editor.invert();
  std::size_t undone = 0;
  for (; editor.can_undo(); ++undone) editor.undo();
  EXPECT_EQ(undone, GlyphHistory::kSteps);
  EXPECT_EQ(editor.buffer(), filled(0xFFFF));
}

}  // namespace
}  // namespace qv5123
