#pragma once

#include <string>
#include <string_view>

#include "content/font_library.h"

namespace qv5123 {

/// Name of the text export, which lives in the directory that was current when the editor was opened.
inline constexpr std::string_view kFontTextName = "fntmkr.txt";

/// The library as text, every line ended by CR LF: for each glyph 24 lines
///   0x0F, 0xF0,     // ----########----0
/// (high byte, low byte, the row's pixels; the glyph's number mod 256 on its first line only) and two empty
/// lines.
std::string export_font_text(const FontLibrary& library);

/// Reads a text export into `library`. The glyph index lags one line behind: line n (from 0) belongs to glyph
/// (n - 1) / 24, so the first line of every glyph after glyph 0 lands in the spare row of the glyph before
/// and that glyph's own row 0 keeps its content. This is kept deliberately; the binary file is the faithful
/// form. Text that is no export is read as far as it fits the line's pattern and is never an error.
void import_font_text(std::string_view text, FontLibrary& library);

}  // namespace qv5123
