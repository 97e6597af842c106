#include "content/font_editor.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "base/hex.h"

namespace qv5123 {
namespace {

std::vector<std::uint8_t> bytes_of(std::string_view hex) {
  std::vector<std::uint8_t> bytes(hex.size() / 2);
  const auto digit = [hex](std::size_t at) { return hex_value(static_cast<unsigned char>(hex[at])); };
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(digit(2 * i) * 16 + digit(2 * i + 1));
  return bytes;
}

}  // namespace

void FontEditor::choose_page(int page) {
  if (page < 0 || page >= FontLibrary::kPages) return;
  end_stroke();
  page_ = page;
  select(0);
}

void FontEditor::select(int index) {
  if (index < 0 || index >= FontLibrary::kPageGlyphs) return;
  end_stroke();
  selected_ = index;
  buffer_ = library_.glyph(selected_glyph());
}

void FontEditor::take_import(const FontLibrary& imported) {
  const bool buffer_edited = stroke_ || buffer_ != library_.glyph(selected_glyph());
  for (int glyph = 0; glyph < FontLibrary::kGlyphs; ++glyph) {
    const FontLibrary::Record& record = imported.record(glyph);
    if (!record.defined || edited_[static_cast<std::size_t>(glyph)]) continue;
    int slot = 0;
    for (const std::uint16_t row : record.rows) library_.import_row(glyph, slot++, row);
  }
  if (!buffer_edited) buffer_ = library_.glyph(selected_glyph());
  in_export_ = imported.to_binary();
  in_file_ = in_export_;
}

void FontEditor::open_binary(std::span<const std::uint8_t> bytes) {
  end_stroke();
  auto edit = start_edit();
  edit.library_before = glyphs(0, FontLibrary::kGlyphs);
  library_.read_binary(bytes);
  for (std::size_t i = 0; i < edited_.size() && i * FontLibrary::kGlyphBytes < bytes.size(); ++i)
    edited_.set(i);
  select(0);
  edit.library_after = glyphs(0, FontLibrary::kGlyphs);
  record(std::move(edit));
  in_file_ = library_.to_binary();
}

void FontEditor::compare_with(std::span<const std::uint8_t> binary) {
  other_.emplace().read_binary(binary);
}

Glyph FontEditor::compared(int glyph) const {
  if (other_) return other_->glyph(glyph);
  Glyph::Rows rows{};
  std::size_t at = static_cast<std::size_t>(glyph) * FontLibrary::kGlyphBytes;
  for (std::uint16_t& row : rows) {
    row = static_cast<std::uint16_t>(in_file_[at] << 8 | in_file_[at + 1]);
    at += 2;
  }
  return Glyph(rows);
}

int FontEditor::differing() const {
  int count = 0;
  for (int glyph = 0; glyph < FontLibrary::kGlyphs; ++glyph) count += differs(glyph) ? 1 : 0;
  return count;
}

std::string FontEditor::draft() const {
  if (!is_unset() && !differs_from_file()) return {};
  std::string text = std::to_string(selected_glyph()) + "\n";
  for (const std::uint16_t row : buffer_.rows()) text += lower_hex(row, 4);
  text += "\n";
  for (const std::uint8_t byte : library_.to_binary()) text += lower_hex(byte);
  return text;
}

bool FontEditor::take_draft(std::string_view draft) {
  int glyph = -1;
  const auto [end, error] = std::from_chars(draft.data(), draft.data() + draft.size(), glyph);
  if (error != std::errc() || glyph < 0 || glyph >= FontLibrary::kGlyphs) return false;
  const std::string_view rest = draft.substr(static_cast<std::size_t>(end - draft.data()));
  constexpr std::size_t kBuffer = 1 + 2 * FontLibrary::kGlyphBytes;
  if (rest.size() != kBuffer + 1 + 2 * FontLibrary::kBinarySize) return false;
  FontLibrary buffer;
  buffer.read_binary(bytes_of(rest.substr(1, kBuffer - 1)));
  end_stroke();
  library_.read_binary(bytes_of(rest.substr(kBuffer + 1)));
  edited_.set();
  go_to(glyph);
  buffer_ = buffer.glyph(0);
  return true;
}

std::string font_file_of(std::string_view draft) {
  FontEditor editor;
  if (!editor.take_draft(draft)) return {};
  editor.store();
  const std::vector<std::uint8_t> binary = editor.library().to_binary();
  return {binary.begin(), binary.end()};
}

void FontEditor::toggle_pixel(GlyphPixel pixel) {
  change_buffer([pixel](Glyph& glyph) { glyph.toggle_pixel(pixel); });
}

void FontEditor::clear() {
  change_buffer([](Glyph& glyph) { glyph.clear(); });
}

void FontEditor::invert() {
  change_buffer([](Glyph& glyph) { glyph.invert(); });
}

void FontEditor::shift(ShiftDirection direction) {
  change_buffer([direction](Glyph& glyph) { glyph.shift(direction); });
}

void FontEditor::paste(const Glyph& pasted) {
  change_buffer([&pasted](Glyph& glyph) { glyph = pasted; });
}

void FontEditor::begin_stroke(GlyphPixel pixel) {
  end_stroke();
  stroke_ = Stroke{start_edit(), pixel, !buffer_.pixel(pixel)};
  buffer_.set_pixel(pixel, stroke_->drawn);
}

void FontEditor::continue_stroke(GlyphPixel pixel) {
  if (!stroke_) return;
  buffer_.draw_line(stroke_->last, pixel, stroke_->drawn);
  stroke_->last = pixel;
}

void FontEditor::end_stroke() {
  if (!stroke_) return;
  record(std::move(stroke_->edit));
  stroke_.reset();
}

void FontEditor::store() {
  end_stroke();
  fill(selected_glyph(), {buffer_});
}

void FontEditor::fill(int first, std::vector<Glyph> glyphs) {
  end_stroke();
  if (first < 0 || first >= FontLibrary::kGlyphs) return;
  glyphs.resize(std::min(glyphs.size(), static_cast<std::size_t>(FontLibrary::kGlyphs - first)));
  auto edit = start_edit();
  edit.first = first;
  edit.library_before = this->glyphs(first, glyphs.size());
  put_glyphs(first, glyphs);
  edit.library_after = std::move(glyphs);
  const bool covers_selected =
      selected_glyph() >= first && selected_glyph() < first + static_cast<int>(edit.library_after.size());
  if (covers_selected) buffer_ = library_.glyph(selected_glyph());
  record(std::move(edit));
}

void FontEditor::undo() {
  end_stroke();
  const auto* edit = history_.undo();
  if (edit == nullptr) return;
  put_glyphs(edit->first, edit->library_before);
  go_to(edit->selected_before);
  buffer_ = edit->buffer_before;
}

void FontEditor::redo() {
  end_stroke();
  const auto* edit = history_.redo();
  if (edit == nullptr) return;
  put_glyphs(edit->first, edit->library_after);
  go_to(edit->selected_after);
  buffer_ = edit->buffer_after;
}

void FontEditor::change_buffer(const std::function<void(Glyph&)>& change) {
  end_stroke();
  auto edit = start_edit();
  change(buffer_);
  record(std::move(edit));
}

GlyphEdit FontEditor::start_edit() const {
  GlyphEdit edit;
  edit.selected_before = selected_glyph();
  edit.buffer_before = buffer_;
  return edit;
}

void FontEditor::record(GlyphEdit edit) {
  edit.selected_after = selected_glyph();
  edit.buffer_after = buffer_;
  history_.record(std::move(edit));
}

std::vector<Glyph> FontEditor::glyphs(int first, std::size_t count) const {
  std::vector<Glyph> glyphs(count);
  for (auto& glyph : glyphs) glyph = library_.glyph(first++);
  return glyphs;
}

void FontEditor::put_glyphs(int first, const std::vector<Glyph>& glyphs) {
  for (const auto& glyph : glyphs) {
    edited_.set(static_cast<std::size_t>(first));
    library_.set_glyph(first++, glyph);
  }
}

void FontEditor::go_to(int glyph) {
  page_ = glyph / FontLibrary::kPageGlyphs;
  selected_ = glyph % FontLibrary::kPageGlyphs;
}

}  // namespace qv5123
