// The font editor's files: the binary form, the one compared with, and sheets.
#include <functional>
#include <utility>

#include "base/atomic_file.h"
#include "base/ui/qt_text.h"
#include "console/slow_write.h"
#include "content/ui/dlg_font_maker.h"
#include "content/ui/font_sheet.h"

namespace qv5123 {
namespace {

struct ReadFont {
  FileResult result;
  std::string bytes;
};

FileChoice font_file_choice(const char* title, const char* initial_name) {
  return {"FONT Files (*.bin)|*.bin|All Files (*.*)|*.*||", "bin", initial_name, title, "font"};
}

FileChoice sheet_choice(const char* title) {
  return {"Pictures (*.png)|*.png|All Files (*.*)|*.*||", "png", "font.png", title, "font"};
}

/// Larger is no sheet.
constexpr std::uintmax_t kLargestSheet = 4u << 20;

}  // namespace

Task<> CDlgFontMaker::open_font_file() {
  const auto path = co_await host_.prompts().choose_open(font_file_choice("Open a font file", "*.bin"));
  if (!path) co_return;
  std::function<ReadFont()> work = [path = *path] {
    ReadFont font;
    font.result = read_whole_file(path, font.bytes);
    return font;
  };
  const ReadFont font = co_await host_.background().run<ReadFont>(std::move(work));
  // No box to be clicked away: the library is as it was.
  if (!font.result.ok()) co_return host_.show_failure(font.result.text);
  editor_.open_binary({reinterpret_cast<const std::uint8_t*>(font.bytes.data()), font.bytes.size()});
  refresh_all();
  const std::size_t glyphs = font.bytes.size() / FontLibrary::kGlyphBytes;
  const std::string part =
      glyphs < FontLibrary::kGlyphs ? ", " + std::to_string(glyphs) + " of 1024 glyphs" : "";
  host_.show_status("Font file read: " + path_text(*path) + part);
}

Task<> CDlgFontMaker::save_font_file() {
  const std::string unset = unset_text();
  if (!unset.empty()) {
    const bool without = co_await agreed(unset + "\n\nSave the font without it?");
    if (!without) co_return;
  }
  begin_export(Export::always);
  const auto path =
      co_await host_.prompts().choose_save(font_file_choice("Save the font", "fontT_16x24_.bin"));
  if (!path) co_return;
  std::vector<std::uint8_t> binary = editor_.library().to_binary();
  std::function<FileResult()> work = [path = *path, binary] {
    return write_file_atomically(path, {reinterpret_cast<const char*>(binary.data()), binary.size()});
  };
  const FileResult written = co_await write_in_background(host_, *path, std::move(work));
  if (!written.ok()) co_return host_.show_failure(written.text);
  editor_.mark_in_file(std::move(binary));
  host_.draft_saved();
  host_.show_status("Font file written: " + path_text(*path));
}

Task<> CDlgFontMaker::compare_font() {
  const auto path =
      co_await host_.prompts().choose_open(font_file_choice("Choose the font file to compare with", "*.bin"));
  ReadFont font;
  if (path) {
    std::function<ReadFont()> work = [path = *path] {
      ReadFont read;
      read.result = read_whole_file(path, read.bytes);
      return read;
    };
    font = co_await host_.background().run<ReadFont>(std::move(work));
    if (!font.result.ok()) co_return host_.show_failure(font.result.text);
    editor_.compare_with({reinterpret_cast<const std::uint8_t*>(font.bytes.data()), font.bytes.size()});
  } else {
    editor_.compare_with_file();
  }
  compared_name_ = path ? path_to_qt(path->filename()) : QString();
  refresh_all();
}

Task<> CDlgFontMaker::export_sheet() {
  const auto path = co_await host_.prompts().choose_save(sheet_choice("Export the font as a picture"));
  if (!path) co_return;
  std::function<FileResult()> work = [path = *path, library = editor_.library()] {
    const QByteArray file = font_sheet_file(library);
    return write_file_atomically(path, {file.constData(), static_cast<std::size_t>(file.size())});
  };
  const FileResult written = co_await write_in_background(host_, *path, std::move(work));
  if (!written.ok()) co_return host_.show_failure(written.text);
  host_.show_status("Sheet written: " + path_text(*path));
}

Task<> CDlgFontMaker::import_sheet() {
  const auto path = co_await host_.prompts().choose_open(sheet_choice("Import a picture of the font"));
  if (!path) co_return;
  struct Sheet {
    FileResult result;
    std::optional<std::vector<Glyph>> glyphs;
  };
  std::function<Sheet()> work = [path = *path] {
    Sheet sheet;
    std::string bytes;
    sheet.result = read_whole_file(path, bytes, kLargestSheet);
    if (sheet.result.ok()) sheet.glyphs = glyphs_of_sheet(QByteArray::fromStdString(bytes));
    return sheet;
  };
  Sheet sheet = co_await host_.background().run<Sheet>(std::move(work));
  if (!sheet.result.ok()) co_return host_.show_failure(sheet.result.text);
  if (!sheet.glyphs) {
    co_return host_.show_failure(path_text(path->filename()) + " is no sheet of 512 x 768 pixels");
  }
  tell_unset();
  editor_.fill(0, std::move(*sheet.glyphs));
  refresh_all();
  host_.show_status("Sheet read: " + path_text(*path));
}

}  // namespace qv5123
