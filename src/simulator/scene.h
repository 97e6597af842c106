#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qv5123 {

/// Red, green and blue light, linear, 1 = what a white surface sends back. Colours outside the primaries'
/// gamut have a negative part.
using Light = std::array<double, 3>;

/// What the simulated camera looks at, in pixels of its picture.
struct Scene {
  enum class Kind {
    chart,  ///< the 24-patch chart, four rows of six, on a grey background
    flat,   ///< one evenly lit surface, for lens shading
  };
  Kind kind = Kind::chart;
  int width = 1920;
  int height = 1080;
  friend bool operator==(const Scene&, const Scene&) = default;
};

/// The names of all scenes: chart and flat are 1920 x 1080, those with -720 1280 x 720.
inline constexpr std::array<const char*, 4> kSceneNames = {"chart", "flat", "chart-720", "flat-720"};

/// The scene of this name; nothing when there is none.
std::optional<Scene> scene_named(std::string_view name);
std::string scene_name(const Scene& scene);

struct PicturePoint {
  int x = 0;
  int y = 0;
  friend bool operator==(const PicturePoint&, const PicturePoint&) = default;
};

/// Pixels from the middle of a chart patch to that of the next, across and down.
int patch_pitch(const Scene& scene);
/// The middle of patch 0..23.
PicturePoint patch_middle(const Scene& scene, std::size_t patch);

/// What comes from the surface seen at a pixel. Pixels outside the picture show the background.
Light scene_light(const Scene& scene, int x, int y);

}  // namespace qv5123
