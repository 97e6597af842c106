#pragma once

#include <QFont>

#include "content/glyph.h"

namespace qv5123 {

/// The font at the largest size whose line fits a glyph's height.
QFont font_for_glyphs(QFont font);

/// Draws a character, a Unicode code point, into a glyph: centred, on the font's baseline, and squeezed
/// where it is wider than a glyph. `font` comes from `font_for_glyphs`.
Glyph rasterize(const QFont& font, char32_t character);

}  // namespace qv5123
