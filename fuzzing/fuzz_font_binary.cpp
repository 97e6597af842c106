// A binary font file and the strokes of whoever edits it.
#include "content/flash_image.h"
#include "content/flash_inspection.h"
#include "content/font_editor.h"
#include "fuzz_input.h"

using namespace qv5123;

namespace {

void edit(FontEditor& editor, std::uint8_t action, std::uint8_t number) {
  const GlyphPixel pixel{number % 32 - 4, number / 8 - 4};
  switch (action % 12) {
    case 0:
      return editor.choose_page(number - 2);
    case 1:
      return editor.select(number * 2 - 4);
    case 2:
      return editor.toggle_pixel(pixel);
    case 3:
      return editor.invert();
    case 4:
      return editor.shift(static_cast<ShiftDirection>(number % 4));
    case 5:
      return editor.begin_stroke(pixel);
    case 6:
      return editor.continue_stroke(pixel);
    case 7:
      return editor.end_stroke();
    case 8:
      return editor.store();
    case 9:
      return editor.undo();
    case 10:
      return editor.redo();
    default:
      return editor.fill(number * 5 - 8, {editor.buffer(), {}, editor.buffer()});
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  FontEditor editor;
  editor.open_binary(bytes);
  const auto binary = editor.library().to_binary();
  const std::size_t whole = std::min(size, FontLibrary::kBinarySize) & ~std::size_t{1};
  fuzz::require(std::equal(binary.begin(), binary.begin() + static_cast<std::ptrdiff_t>(whole), data),
                "what is read is written again");
  for (std::size_t i = 0; i + 1 < std::min<std::size_t>(size, 400); i += 2) {
    edit(editor, data[i], data[i + 1]);
    fuzz::require(editor.selected_glyph() >= 0 && editor.selected_glyph() < FontLibrary::kGlyphs,
                  "the glyph that is selected exists");
  }
  while (editor.can_redo()) editor.redo();
  const FontLibrary edited = editor.library();
  while (editor.can_undo()) editor.undo();
  fuzz::require(editor.library() == FontLibrary(), "the way back leads to the start");
  while (editor.can_redo()) editor.redo();
  fuzz::require(editor.library() == edited, "and the way forth to what was edited");
  // Slow, and not much can happen to it.
  if (size % 8 == 0) {
    const std::string file(fuzz::text_of(bytes));
    inspect_flash_image(lay_out_flash({file, {}, file}));
  }
  return 0;
}
