#include <benchmark/benchmark.h>

#include <filesystem>

#include "base/atomic_file.h"
#include "content/flash_image.h"
#include "content/font_geometry.h"
#include "content/font_text.h"

namespace qv5123 {
namespace {

/// A library without an empty glyph.
FontLibrary full_library() {
  FontLibrary library;
  std::vector<std::uint8_t> bytes(FontLibrary::kBinarySize);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 167 % 256);
  library.read_binary(bytes);
  return library;
}

void font_preview_redraw(benchmark::State& state) {
  const auto library = full_library();
  for (auto _ : state) benchmark::DoNotOptimize(draw_preview(library, 1, 240));
}
BENCHMARK(font_preview_redraw)->Unit(benchmark::kMicrosecond);

void font_text_export(benchmark::State& state) {
  const auto library = full_library();
  for (auto _ : state) benchmark::DoNotOptimize(export_font_text(library));
}
BENCHMARK(font_text_export)->Unit(benchmark::kMicrosecond);

void font_text_import(benchmark::State& state) {
  const auto text = export_font_text(full_library());
  FontLibrary library;
  for (auto _ : state) import_font_text(text, library);
}
BENCHMARK(font_text_import)->Unit(benchmark::kMicrosecond);

/// From three files, the largest that fit, to the image on the disk.
void flash_image_build(benchmark::State& state) {
  const auto folder = std::filesystem::temp_directory_path() / "qv5123_flash_benchmark";
  std::filesystem::create_directories(folder);
  const FlashFiles files{folder / "fw.bin", folder / "font.bin", folder / "user.dat"};
  write_file_atomically(files.firmware, std::string(flash::kFileLimit, 'f'));
  write_file_atomically(files.font, std::string(FontLibrary::kBinarySize, 'g'));
  std::string numbers;
  for (int i = 0; i < 1024; ++i) numbers += std::to_string(i % 256) + "\r\n";
  write_file_atomically(files.user, numbers);
  for (auto _ : state) {
    const auto build = build_flash_image(files);
    if (!write_file_atomically(folder / "out.bin", build.image).ok()) state.SkipWithError("cannot write");
  }
  std::filesystem::remove_all(folder);
}
BENCHMARK(flash_image_build)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
}  // namespace qv5123
