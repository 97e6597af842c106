#pragma once

#include <array>
#include <cstdint>

#include "simulator/picture_settings.h"

namespace qv5123 {

/// Counts of red, green and blue, 0..255.
using PictureColour = std::array<std::uint8_t, 3>;

/// The factors by which the lens shading correction raises a pixel.
Light shading_gain(const PictureSettings& settings, int x, int y);

/// The sensor's signal at a pixel, corrected for the lens where that is on.
Light corrected_raw(const Camera& camera, const PictureSettings& settings, int x, int y);

/// `colour` through the white balance and, where it is on, the matrix.
Light processed(const PictureSettings& settings, const Light& colour);

/// The nearest counts.
PictureColour in_counts(const Light& colour);

/// What the colour picker says: the mean of its square of the picture. The square stays inside the picture.
PictureColour picker_colour(const Camera& camera, const PictureSettings& settings);

/// What the white balance's own picker says: the same square, corrected for the lens but not balanced.
PictureColour raw_colour(const Camera& camera, const PictureSettings& settings);

}  // namespace qv5123
