#include "simulator/preview.h"

#include <algorithm>
#include <cstddef>

namespace qv5123 {
namespace {

constexpr std::uint32_t kOpaque = 0xFF000000;
constexpr std::uint32_t kCursorLight = 0xFFFFFFFF;
constexpr std::uint32_t kCursorDark = 0xFF000000;
constexpr std::uint32_t kStripe = 0xFF00E000;
constexpr int kStripeWidth = 4;
constexpr int kSmallestCursor = 9;

std::uint32_t through_gamma(const PictureSettings& settings, PictureColour colour) {
  if (settings.gamma) {
    for (std::size_t c = 0; c < colour.size(); ++c) colour[c] = settings.curves[c][colour[c]];
  }
  if (settings.black_and_white) {
    colour.fill(static_cast<std::uint8_t>((76 * colour[0] + 148 * colour[1] + 32 * colour[2]) / 256));
  }
  return kOpaque | static_cast<std::uint32_t>(colour[0]) << 16 | static_cast<std::uint32_t>(colour[1]) << 8 |
         colour[2];
}

bool shows_cursor(const PictureSettings& settings) {
  return settings.picker_on || settings.mark != AwbMark::none;
}

/// The middle of pixel `at` of `count`, on a scale of `size`, counted from the other end where `turned`.
int seen_at(int at, int count, int size, bool turned) {
  const int place = static_cast<int>((2LL * at + 1) * size / (2LL * count));
  return turned ? size - 1 - place : place;
}

void set_pixel(Preview& preview, int x, int y, std::uint32_t colour) {
  if (x < 0 || y < 0 || x >= preview.width || y >= preview.height) return;
  preview.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(preview.width) +
                 static_cast<std::size_t>(x)] = colour;
}

void draw_square(Preview& preview, PicturePoint middle, int half, std::uint32_t colour) {
  for (int i = -half; i <= half; ++i) {
    set_pixel(preview, middle.x + i, middle.y - half, colour);
    set_pixel(preview, middle.x + i, middle.y + half, colour);
    set_pixel(preview, middle.x - half, middle.y + i, colour);
    set_pixel(preview, middle.x + half, middle.y + i, colour);
  }
}

void draw_cursor(Preview& preview, const Scene& scene, const PictureSettings& settings) {
  const int x = std::min(settings.cursor.x, scene.width - 1);
  const int y = std::min(settings.cursor.y, scene.height - 1);
  const PicturePoint middle = {(settings.mirror ? scene.width - 1 - x : x) * preview.width / scene.width,
                               (settings.flip ? scene.height - 1 - y : y) * preview.height / scene.height};
  const int half = std::max(settings.picker_edge * preview.width / scene.width, kSmallestCursor) / 2;
  draw_square(preview, middle, half, kCursorLight);
  draw_square(preview, middle, half + 1, kCursorDark);
}

}  // namespace

Preview render_preview(const Camera& camera, const PictureSettings& settings, int width, int height) {
  Preview preview;
  if (width < 1 || height < 1) return preview;
  preview.width = width;
  preview.height = height;
  preview.pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  const bool checks = settings.mark == AwbMark::check;
  for (int row = 0; row < height; ++row) {
    const int y = seen_at(row, height, camera.scene().height, settings.flip);
    for (int column = 0; column < width; ++column) {
      const int x = seen_at(column, width, camera.scene().width, settings.mirror);
      const Light raw = corrected_raw(camera, settings, x, y);
      const bool striped = checks && (row + column) / kStripeWidth % 2 == 0 && settings.white.is_white(raw);
      preview.pixels.push_back(striped ? kStripe
                                       : through_gamma(settings, in_counts(processed(settings, raw))));
    }
  }
  if (shows_cursor(settings)) draw_cursor(preview, camera.scene(), settings);
  return preview;
}

}  // namespace qv5123
