#pragma once

#include <QByteArray>
#include <QImage>
#include <optional>
#include <vector>

#include "content/font_library.h"

namespace qv5123 {

/// The font as one picture, 32 glyphs of 16 x 24 pixels in a row without gaps: drawn pixels black on white.
inline constexpr int kSheetColumns = 32;
inline constexpr QSize kSheetSize{kSheetColumns * Glyph::kWidth,
                                  FontLibrary::kGlyphs / kSheetColumns* Glyph::kHeight};

QImage font_sheet(const FontLibrary& library);
/// The same as the content of a PNG file.
QByteArray font_sheet_file(const FontLibrary& library);

/// The glyphs of a sheet's file, in any format that pictures have; what is darker than the middle is drawn,
/// what is transparent is not. Nothing for a picture of another size.
std::optional<std::vector<Glyph>> glyphs_of_sheet(const QByteArray& file);

}  // namespace qv5123
