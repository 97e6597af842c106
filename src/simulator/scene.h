#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/chart_colours.h"

namespace qv5123 {

/// What may be special about a scene, and about the lens that sees it. Any of them go together.
enum class Trait : std::uint8_t {
  turned,     ///< the chart is turned by 4 degrees
  angle,      ///< and is seen from the side and from above
  metameric,  ///< the sensor sees each coloured patch up to 4 % off what the eye does
  flare,      ///< stray light on everything
  warm,       ///< a lamp of about 2800 K that stands to the right
  bright,     ///< exposed so that the white patch saturates
  dark,       ///< exposed to an eighth
  cos4,       ///< a lens that falls off by the fourth power of the cosine
  steep,      ///< the same, and its rim hides a part of the corners
};
inline constexpr int kTraits = 9;

/// What the simulated camera looks at, in pixels of its picture.
struct Scene {
  enum class Kind {
    chart,  ///< the 24-patch chart, four rows of six, on a grey background
    flat,   ///< one evenly lit surface, for lens shading
  };
  Kind kind = Kind::chart;
  int width = 1920;
  int height = 1080;
  unsigned traits = 0;  ///< a bit for each Trait

  bool has(Trait trait) const { return (traits >> static_cast<unsigned>(trait) & 1) != 0; }
  /// Whether the lens is another than the one that the chip's correction can undo.
  bool has_other_lens() const { return has(Trait::cos4) || has(Trait::steep); }
  friend bool operator==(const Scene&, const Scene&) = default;
};

/// The names of the scenes that lists offer. Others are made of the same words.
inline constexpr std::array<const char*, 17> kSceneNames = {"chart",
                                                            "flat",
                                                            "chart-720",
                                                            "flat-720",
                                                            "chart-turned",
                                                            "chart-angle",
                                                            "chart-cos4",
                                                            "chart-metameric",
                                                            "chart-flare",
                                                            "chart-warm",
                                                            "chart-bright",
                                                            "chart-dark",
                                                            "chart-turned-metameric-flare-warm-cos4",
                                                            "flat-cos4",
                                                            "flat-steep",
                                                            "flat-warm-cos4",
                                                            "flat-bright"};

/// The scene of this name: "chart" or "flat", then any of the traits' names and "720", all with "-" between
/// them. Without "720" it is 1920 x 1080. Nothing for anything else.
std::optional<Scene> scene_named(std::string_view name);
/// The name with its words in the order of Trait.
std::string scene_name(const Scene& scene);
/// All words that a name may have after its first: "turned, angle, ..., 720".
std::string scene_words();

struct PicturePoint {
  int x = 0;
  int y = 0;
  friend bool operator==(const PicturePoint&, const PicturePoint&) = default;
};

/// Pixels from the middle of a chart patch to that of the next, across and down, where the chart is upright.
int patch_pitch(const Scene& scene);
/// The middle of patch 0..23, to the nearest pixel.
PicturePoint patch_middle(const Scene& scene, std::size_t patch);

/// Where the chart lies in the picture.
class ChartPose {
 public:
  explicit ChartPose(const Scene& scene);
  /// The pixel of a place on the chart: patches are 1 apart, and its middle is 0, 0.
  std::array<double, 2> pixel(double across, double down) const { return mapped(to_pixel_, across, down); }
  /// The place on the chart that a pixel shows.
  std::array<double, 2> place(double x, double y) const { return mapped(to_chart_, x, y); }
  /// The patch at a pixel; nothing between and beside the patches.
  std::optional<std::size_t> patch_at(int x, int y) const;
  friend bool operator==(const ChartPose&, const ChartPose&) = default;

 private:
  using Homography = std::array<std::array<double, 3>, 3>;
  static std::array<double, 2> mapped(const Homography& by, double a, double b);
  static Homography inverse(const Homography& of);

  Homography to_pixel_{};
  Homography to_chart_{};
};

/// What comes from the surface seen at a pixel, `pose` being the scene's. Pixels outside the picture show the
/// background.
Light scene_light(const Scene& scene, const ChartPose& pose, int x, int y);

/// Light of a lamp of this colour temperature, 2000..10000 kelvin, green 1, by Planck's law beside a lamp at
/// 4100 K.
Light lamp_light(int kelvin);
/// The lamps under which white is measured, kelvin.
inline constexpr std::array<int, 6> kLamps = {8700, 6500, 4100, 3000, 2800, 2400};
inline constexpr int kUsualLamp = 4100;
inline constexpr int kWarmLamp = 2800;

}  // namespace qv5123
