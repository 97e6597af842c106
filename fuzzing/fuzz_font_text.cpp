// The font editor's text export, "fntmkr.txt".
#include "content/font_editor.h"
#include "content/font_text.h"
#include "fuzz_input.h"

using namespace qv5123;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FontLibrary imported;
  import_font_text(fuzz::text_of({data, size}), imported);
  FontEditor editor;
  editor.take_import(imported);
  const FontLibrary& library = editor.library();
  for (int index = 0; index < FontLibrary::kGlyphs; ++index) {
    const auto& record = library.record(index);
    fuzz::require(!record.defined || record.number == (index & 0xFF), "a glyph's number is its own");
  }
  fuzz::require(library.to_binary().size() == FontLibrary::kBinarySize, "the binary form has its size");
  return 0;
}
