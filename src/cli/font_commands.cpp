#include <algorithm>
#include <cstdio>
#include <string_view>

#include "base/atomic_file.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/numbers.h"
#include "content/font_library.h"
#include "content/font_text.h"

namespace qv5123 {
namespace {

struct FontOptions {
  std::filesystem::path input;
  std::filesystem::path other;
  std::vector<int> glyphs;
};

FontLibrary read_library(const std::filesystem::path& path) {
  const std::string bytes = read_file(path);
  if (bytes.size() != FontLibrary::kBinarySize) {
    refuse(path_text(path) + " has " + std::to_string(bytes.size()) + " bytes, a font library has " +
           std::to_string(FontLibrary::kBinarySize));
  }
  FontLibrary library;
  library.read_binary({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  return library;
}

ExitCode wrote(Context& context, const std::filesystem::path& path) {
  context.out.result(Json{{"file", path_text(path)}});
  context.out.remark(path_text(path) + ": " + std::to_string(FontLibrary::kGlyphs) + " glyphs\n");
  return ExitCode::done;
}

ExitCode export_text(Context& context, const FontOptions& options) {
  write_file(options.other, export_font_text(read_library(options.input)));
  return wrote(context, options.other);
}

/// The import takes what it finds, as the font editor does at its start; a wrong file would be a font of
/// nothing.
void check_font_text(const std::filesystem::path& path, std::string_view text) {
  std::size_t rows = 0;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string line(text.substr(0, text.find('\n')));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    unsigned high = 0;
    unsigned low = 0;
    char slashes[3]{};
    char pixels[17]{};
    const int found = std::sscanf(line.c_str(), "0x%2X, 0x%2X, %2s %16s", &high, &low, slashes, pixels);
    if (found == 4) {
      ++rows;
      continue;
    }
    refuse(path_text(path) + ", line " + std::to_string(number) +
           ": not of the form \"0x0F, 0xF0,     // ----########----\"");
  }
  if (rows == 0) refuse(path_text(path) + " is no font text");
}

ExitCode import_text(Context& context, const FontOptions& options) {
  const std::string text = read_file(options.input);
  check_font_text(options.input, text);
  FontLibrary library;
  import_font_text(text, library);
  const std::vector<std::uint8_t> bytes = library.to_binary();
  write_file(options.other, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  return wrote(context, options.other);
}

std::string glyph_title(int index) {
  return "glyph " + std::to_string(index) + " (" + hex(static_cast<unsigned>(index), 3) + ")\n";
}

ExitCode show(Context& context, const FontOptions& options) {
  const FontLibrary library = read_library(options.input);
  Json json = Json::array();
  std::string text;
  for (const int index : options.glyphs) {
    const Glyph glyph = library.glyph(index);
    json.push_back({{"glyph", index}, {"rows", glyph.rows()}});
    text += glyph_title(index) + glyph_picture(glyph);
  }
  context.out.result(json, text);
  return ExitCode::done;
}

/// Two glyphs side by side.
std::string pictures(const Glyph& a, const Glyph& b) {
  std::string text;
  for (std::size_t row = 0; row < a.rows().size(); ++row) {
    text += row_picture(a.rows()[row]) + "  " + row_picture(b.rows()[row]) + "\n";
  }
  return text;
}

ExitCode diff(Context& context, const FontOptions& options) {
  const FontLibrary a = read_library(options.input);
  const FontLibrary b = read_library(options.other);
  Json json = Json::array();
  std::string text;
  for (int index = 0; index < FontLibrary::kGlyphs; ++index) {
    if (a.glyph(index) == b.glyph(index)) continue;
    json.push_back({{"glyph", index}, {"a", a.glyph(index).rows()}, {"b", b.glyph(index).rows()}});
    text += glyph_title(index) + pictures(a.glyph(index), b.glyph(index));
  }
  context.out.result({{"differences", json}}, text);
  return json.empty() ? ExitCode::done : ExitCode::negative;
}

void declare_export(CLI::App& command, FontOptions& options) {
  add_path(command, "BIN", options.input, "A font library, 49152 bytes")->required();
  add_path(command, "-o,--output", options.other, "The text to write")->required();
}

void declare_import(CLI::App& command, FontOptions& options) {
  add_path(command, "TXT", options.input, "A text export")->required();
  add_path(command, "-o,--output", options.other, "The font library to write")->required();
}

void declare_show(CLI::App& command, FontOptions& options) {
  add_path(command, "BIN", options.input, "A font library, 49152 bytes")->required();
  add_numbers(command, "GLYPH", options.glyphs, 0, FontLibrary::kGlyphs - 1, "Numbers of glyphs, 0..1023")
      ->required();
}

void declare_diff(CLI::App& command, FontOptions& options) {
  add_path(command, "A", options.input, "A font library")->required();
  add_path(command, "B", options.other, "Another one")->required();
}

}  // namespace

void add_font_commands(CLI::App& app, Context& context) {
  CLI::App* font = add_group(app, "font", "The library of the on-screen display's font");
  add_command<FontOptions>(*font, context, "export", "Write a library as text", declare_export, export_text);
  add_command<FontOptions>(*font, context, "import",
                           "Write a text as library, as the font editor imports it: the first row of a glyph "
                           "is not taken, the binary file is the faithful form",
                           declare_import, import_text);
  add_command<FontOptions>(*font, context, "show", "Print glyphs as pictures", declare_show, show);
  add_command<FontOptions>(*font, context, "diff", "Print the glyphs that differ", declare_diff, diff);
}

}  // namespace qv5123
