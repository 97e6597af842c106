#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "content/glyph.h"

namespace qv5123 {

/// One step of the font editor that can be taken back: what it changed, where, before and after.
struct GlyphEdit {
  /// The glyphs, 0..1023, that were selected before and after: going back and forth shows them again.
  int selected_before = 0;
  int selected_after = 0;
  Glyph buffer_before;
  Glyph buffer_after;
  /// Library glyphs `first`, `first` + 1, ... that the step replaced; empty if it touched the edit buffer
  /// only.
  int first = 0;
  std::vector<Glyph> library_before;
  std::vector<Glyph> library_after;

  bool changes_anything() const { return buffer_before != buffer_after || library_before != library_after; }
};

/// The steps done and undone, oldest forgotten first.
class GlyphHistory {
 public:
  /// A step is about 100 bytes, but opening a font file or filling all glyphs is 100 KB.
  static constexpr std::size_t kSteps = 256;

  /// Adds a step that was just done; what had been undone before can no longer be redone. A step that changed
  /// nothing is not kept.
  void record(GlyphEdit edit) {
    if (!edit.changes_anything()) return;
    edits_.resize(done_);
    if (edits_.size() == kSteps) edits_.erase(edits_.begin());
    edits_.push_back(std::move(edit));
    done_ = edits_.size();
  }
  /// The step to take back, or nothing. Valid until the next call.
  const GlyphEdit* undo() { return can_undo() ? &edits_[--done_] : nullptr; }
  /// The step to do again, or nothing. Valid until the next call.
  const GlyphEdit* redo() { return can_redo() ? &edits_[done_++] : nullptr; }

  bool can_undo() const { return done_ > 0; }
  bool can_redo() const { return done_ < edits_.size(); }

 private:
  std::vector<GlyphEdit> edits_;
  /// How many of `edits_` are in force; the rest has been undone.
  std::size_t done_ = 0;
};

}  // namespace qv5123
