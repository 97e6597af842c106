#pragma once

#include <cstdint>
#include <vector>

#include "simulator/picture.h"

namespace qv5123 {

/// A small copy of the chip's picture, as a monitor on its output shows it.
struct Preview {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  ///< row by row, 0xFFRRGGBB
};

/// The picture corrected, processed and through the gamma curves, turned as the chip turns it, one pixel
/// looked at for each of the preview's. The cursor is drawn in while the picker is on or a mark is shown;
/// while the mark checks, what the chip takes for white is striped. Nothing for sizes below 1.
Preview render_preview(const Camera& camera, const PictureSettings& settings, int width, int height);

}  // namespace qv5123
