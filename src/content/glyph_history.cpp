#include "content/glyph_history.h"

#include <utility>

namespace qv5123 {

void GlyphHistory::record(GlyphEdit edit) {
  if (!edit.changes_anything()) return;
  edits_.resize(done_);
  if (edits_.size() == kSteps) edits_.erase(edits_.begin());
  edits_.push_back(std::move(edit));
  done_ = edits_.size();
}

const GlyphEdit* GlyphHistory::undo() {
  return can_undo() ? &edits_[--done_] : nullptr;
}

const GlyphEdit* GlyphHistory::redo() {
  return can_redo() ? &edits_[done_++] : nullptr;
}

}  // namespace qv5123
