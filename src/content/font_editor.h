#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "content/font_library.h"
#include "content/glyph.h"
#include "content/glyph_history.h"

namespace qv5123 {

/// The font editor without its window: the library, the glyph picked in it, the edit buffer that is apart
/// from the library until `store`, and the way back.
class FontEditor {
 public:
  const FontLibrary& library() const { return library_; }
  /// The glyph being edited.
  const Glyph& buffer() const { return buffer_; }
  /// Page shown, 0..3.
  int page() const { return page_; }
  /// Glyph selected within the page, 0..255.
  int selected() const { return selected_; }
  /// Glyph selected within the library, 0..1023.
  int selected_glyph() const { return page_ * FontLibrary::kPageGlyphs + selected_; }

  /// Shows a page, 0..3, and starts at its first glyph. Another page is ignored.
  void choose_page(int page);
  /// Copies glyph `index`, 0..255, of the page into the edit buffer. Another index is ignored.
  void select(int index);

  /// Whether something is drawn that store() has not put into the library.
  bool is_unset() const { return buffer_ != library_.glyph(selected_glyph()); }
  /// Whether the library holds something else than the binary file last read or written, or than the text
  /// export. Before there was a file, what the export held at the beginning counts for both.
  bool differs_from_file() const { return library_.to_binary() != in_file_; }
  bool differs_from_export() const { return library_.to_binary() != in_export_; }
  /// A file holds this library now, in the binary form.
  void mark_in_file(std::vector<std::uint8_t> binary) { in_file_ = std::move(binary); }
  void mark_in_export(std::vector<std::uint8_t> binary) { in_export_ = std::move(binary); }

  /// What glyphs are compared with: another binary file's content, of which a short one leaves the rest
  /// empty, or the file last read or written, as at the beginning.
  void compare_with(std::span<const std::uint8_t> binary);
  void compare_with_file() { other_.reset(); }
  /// The other's glyph, 0..1023, and whether the library's is not the same.
  Glyph compared(int glyph) const;
  bool differs(int glyph) const { return library_.glyph(glyph) != compared(glyph); }
  int differing() const;
  /// Puts the other's glyph in place of the selected one, as one step.
  void take_over() { fill(selected_glyph(), {compared(selected_glyph())}); }

  /// Library, glyph and edit buffer as text that another run can go on with; empty while nothing is unset and
  /// the file holds all.
  std::string draft() const;
  /// Goes on with a draft, without a way back. False for a text that is none, which changes nothing.
  bool take_draft(std::string_view draft);

  /// Takes over the glyphs that a text export defines, without a way back. What was edited before stays.
  void take_import(const FontLibrary& imported);
  /// Fills the library from a binary font file and goes to the page's first glyph.
  void open_binary(std::span<const std::uint8_t> bytes);

  /// Each a step of its own on the edit buffer.
  void toggle_pixel(GlyphPixel pixel);
  void clear();
  void invert();
  void shift(ShiftDirection direction);
  void paste(const Glyph& pasted);

  /// A stroke paints the edit buffer from pixel to pixel; however long, it is one step. It starts with the
  /// inverse of the pixel it starts on.
  void begin_stroke(GlyphPixel pixel);
  void continue_stroke(GlyphPixel pixel);
  void end_stroke();
  bool in_stroke() const { return stroke_.has_value(); }

  /// Copies the edit buffer into the selected glyph of the library.
  void store();
  /// Replaces the library's glyphs from `first` (0..1023) on; what goes beyond 1023 is dropped. If the
  /// selected glyph is among them the edit buffer follows.
  void fill(int first, std::vector<Glyph> glyphs);

  void undo();
  void redo();
  bool can_undo() const { return history_.can_undo(); }
  bool can_redo() const { return history_.can_redo(); }

 private:
  struct Stroke {
    GlyphEdit edit;
    GlyphPixel last;
    bool drawn = false;
  };

  void change_buffer(const std::function<void(Glyph&)>& change);
  GlyphEdit start_edit() const;
  void record(GlyphEdit edit);
  std::vector<Glyph> glyphs(int first, std::size_t count) const;
  void put_glyphs(int first, const std::vector<Glyph>& glyphs);
  void go_to(int glyph);

  FontLibrary library_;
  std::vector<std::uint8_t> in_file_ = FontLibrary().to_binary();
  std::vector<std::uint8_t> in_export_ = in_file_;
  std::optional<FontLibrary> other_;
  std::bitset<FontLibrary::kGlyphs> edited_;  // library glyphs that were ever replaced
  GlyphHistory history_;
  Glyph buffer_;
  int page_ = 0;
  int selected_ = 0;
  std::optional<Stroke> stroke_;
};

/// What a draft holds as a font file in the binary form, with what was drawn but not set in its place. Empty
/// for a text that is no draft.
std::string font_file_of(std::string_view draft);

}  // namespace qv5123
