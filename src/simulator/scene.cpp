#include "simulator/scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qv5123 {
namespace {

constexpr double kDegree = std::numbers::pi / 180;
/// From a patch's middle to its edge, where the next patch is 1 away.
constexpr double kHalfPatch = 0.4;
constexpr Light kBackground = {0.2, 0.2, 0.2};
constexpr Light kFlatField = {0.8, 0.8, 0.8};
/// How much brighter the right edge of the picture is than the left one under a lamp on that side.
constexpr double kGradient = 0.3;

constexpr double kTurn = 4 * kDegree;
/// The chart seen from the side and from above, by these angles, from as many patches away.
constexpr double kSideways = 24 * kDegree;
constexpr double kDownwards = 14 * kDegree;
constexpr double kDistance = 12;

constexpr std::array<const char*, kTraits> kTraitNames = {"turned", "angle", "metameric", "flare", "warm",
                                                          "bright", "dark",  "cos4",      "steep"};
constexpr const char* kSmallName = "720";

/// What is up to the next "-", which `rest` loses with it.
std::string_view take_word(std::string_view& rest) {
  const std::string_view word = rest.substr(0, rest.find('-'));
  rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  return word;
}

bool take_trait(std::string_view word, Scene& scene) {
  if (word == kSmallName) {
    scene.width = 1280;
    scene.height = 720;
    return true;
  }
  for (unsigned trait = 0; trait < kTraits; ++trait) {
    if (word != kTraitNames[trait]) continue;
    scene.traits |= 1u << trait;
    return true;
  }
  return false;
}

/// How much light a wavelength, in nanometres, has of a black body's, on a scale of its own.
double black_body(double wavelength, double kelvin) {
  return 1 / (std::pow(wavelength, 5) * std::expm1(1.4388e7 / (wavelength * kelvin)));
}

}  // namespace

std::optional<Scene> scene_named(std::string_view name) {
  if (name.ends_with('-')) return std::nullopt;
  std::string_view rest = name;
  const std::string_view kind = take_word(rest);
  if (kind != "chart" && kind != "flat") return std::nullopt;
  Scene scene;
  if (kind == "flat") scene.kind = Scene::Kind::flat;
  while (!rest.empty()) {
    if (!take_trait(take_word(rest), scene)) return std::nullopt;
  }
  return scene;
}

std::string scene_name(const Scene& scene) {
  std::string name = scene.kind == Scene::Kind::flat ? "flat" : "chart";
  for (unsigned trait = 0; trait < kTraits; ++trait) {
    if (scene.has(static_cast<Trait>(trait))) name += std::string("-") + kTraitNames[trait];
  }
  return scene.height == 720 ? name + "-" + kSmallName : name;
}

std::string scene_words() {
  std::string words;
  for (const char* trait : kTraitNames) words += std::string(trait) + ", ";
  return words + kSmallName;
}

int patch_pitch(const Scene& scene) {
  return scene.height * 2 / 9;
}

PicturePoint patch_middle(const Scene& scene, std::size_t patch) {
  const int at = static_cast<int>(patch % kChartPatches);
  const int row = at / kChartColumns;
  const auto [x, y] =
      ChartPose(scene).pixel(at % kChartColumns - (kChartColumns - 1) / 2.0, row - (kChartRows - 1) / 2.0);
  return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
}

/// A place on the chart is turned in its plane, tilted about its own axes, and seen from a point in front of
/// the middle; a place d away from where it would be upright is that much nearer or farther.
ChartPose::ChartPose(const Scene& scene) {
  const double turn = scene.has(Trait::turned) ? kTurn : 0;
  const double sideways = scene.has(Trait::angle) ? kSideways : 0;
  const double downwards = scene.has(Trait::angle) ? kDownwards : 0;
  const double pitch = patch_pitch(scene);
  const double c = std::cos(turn), s = std::sin(turn);
  const double cs = std::cos(sideways), ss = std::sin(sideways);
  const double cd = std::cos(downwards), sd = std::sin(downwards);
  // Of the turned place (u, v): across u cs, down v cd + u ss sd, away u ss cd - v sd.
  const Homography tilted = {{{cs, 0, 0}, {ss * sd, cd, 0}, {ss * cd / kDistance, -sd / kDistance, 1}}};
  Homography& h = to_pixel_;
  for (std::size_t r = 0; r < 3; ++r) {
    h[r] = {tilted[r][0] * c + tilted[r][1] * s, -tilted[r][0] * s + tilted[r][1] * c, tilted[r][2]};
  }
  for (std::size_t j = 0; j < 3; ++j) {
    h[0][j] = h[0][j] * pitch + scene.width / 2.0 * h[2][j];
    h[1][j] = h[1][j] * pitch + scene.height / 2.0 * h[2][j];
  }
  to_chart_ = inverse(h);
}

std::array<double, 2> ChartPose::mapped(const Homography& by, double a, double b) {
  const double scale = by[2][0] * a + by[2][1] * b + by[2][2];
  return {(by[0][0] * a + by[0][1] * b + by[0][2]) / scale, (by[1][0] * a + by[1][1] * b + by[1][2]) / scale};
}

ChartPose::Homography ChartPose::inverse(const Homography& of) {
  Homography result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const auto at = [&](std::size_t row, std::size_t column) {
        return of[(j + row) % 3][(i + column) % 3];
      };
      result[i][j] = at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1);
    }
  }
  const double determinant = of[0][0] * result[0][0] + of[0][1] * result[1][0] + of[0][2] * result[2][0];
  for (auto& row : result)
    for (double& element : row) element /= determinant;
  return result;
}

std::optional<std::size_t> ChartPose::patch_at(int x, int y) const {
  const auto [across, down] = place(x, y);
  const double column = across + (kChartColumns - 1) / 2.0;
  const double row = down + (kChartRows - 1) / 2.0;
  const double nearest_column = std::round(column);
  const double nearest_row = std::round(row);
  if (!(nearest_column >= 0 && nearest_column < kChartColumns && nearest_row >= 0 &&
        nearest_row < kChartRows))
    return std::nullopt;
  if (std::abs(column - nearest_column) >= kHalfPatch || std::abs(row - nearest_row) >= kHalfPatch)
    return std::nullopt;
  return static_cast<std::size_t>(nearest_row * kChartColumns + nearest_column);
}

Light scene_light(const Scene& scene, const ChartPose& pose, int x, int y) {
  Light light = kFlatField;
  if (scene.kind == Scene::Kind::chart) {
    const auto patch = pose.patch_at(x, y);
    light = patch ? chart_colours()[*patch] : kBackground;
  }
  if (!scene.has(Trait::warm)) return light;
  const double lit = 1 + kGradient * (std::clamp(x, 0, scene.width) / static_cast<double>(scene.width) - 0.5);
  for (double& part : light) part *= lit;
  return light;
}

Light lamp_light(int kelvin) {
  constexpr Light kUsual = {1.05, 1.0, 0.55};
  constexpr double kWavelengths[] = {600, 540, 450};
  Light light{};
  for (std::size_t c = 0; c < 3; ++c)
    light[c] = kUsual[c] * black_body(kWavelengths[c], kelvin) / black_body(kWavelengths[c], kUsualLamp);
  const double green = light[1];
  for (double& part : light) part /= green;
  return light;
}

}  // namespace qv5123
