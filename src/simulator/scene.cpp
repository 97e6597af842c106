#include "simulator/scene.h"

#include <cmath>
#include <cstdlib>

#include "tuning/patch_chart.h"

namespace qv5123 {
namespace {

constexpr int kRows = static_cast<int>(kPatches) / kPatchesInRow;
/// The patches' share of the pitch, in percent.
constexpr int kPatchShare = 80;
constexpr Light kBackground = {0.2, 0.2, 0.2};
constexpr Light kFlatField = {0.8, 0.8, 0.8};

/// How far along a row or column of `count` patches a pixel lies; nothing between and beside the patches.
std::optional<int> cell_at(int position, int first_middle, int pitch, int count) {
  const int start = first_middle - pitch / 2;
  if (position < start) return std::nullopt;
  const int cell = (position - start) / pitch;
  if (cell >= count) return std::nullopt;
  const int from_middle = std::abs(position - (first_middle + cell * pitch));
  if (from_middle * 200 >= pitch * kPatchShare) return std::nullopt;
  return cell;
}

}  // namespace

std::optional<Scene> scene_named(std::string_view name) {
  for (const char* known : kSceneNames) {
    if (name != known) continue;
    Scene scene;
    if (name.starts_with("flat")) scene.kind = Scene::Kind::flat;
    if (name.ends_with("-720")) scene = {scene.kind, 1280, 720};
    return scene;
  }
  return std::nullopt;
}

std::string scene_name(const Scene& scene) {
  return std::string(scene.kind == Scene::Kind::flat ? "flat" : "chart") +
         (scene.height == 720 ? "-720" : "");
}

int patch_pitch(const Scene& scene) {
  return scene.height * 2 / 9;
}

PicturePoint patch_middle(const Scene& scene, std::size_t patch) {
  const int pitch = patch_pitch(scene);
  const int column = static_cast<int>(patch % kPatches) % kPatchesInRow;
  const int row = static_cast<int>(patch % kPatches) / kPatchesInRow;
  return {(scene.width - (kPatchesInRow - 1) * pitch) / 2 + column * pitch,
          (scene.height - (kRows - 1) * pitch) / 2 + row * pitch};
}

Light scene_light(const Scene& scene, int x, int y) {
  if (scene.kind == Scene::Kind::flat) return kFlatField;
  const PicturePoint first = patch_middle(scene, 0);
  const int pitch = patch_pitch(scene);
  const auto column = cell_at(x, first.x, pitch, kPatchesInRow);
  const auto row = cell_at(y, first.y, pitch, kRows);
  if (!column || !row) return kBackground;
  return kPatchReferences[static_cast<std::size_t>(*row * kPatchesInRow + *column)];
}

}  // namespace qv5123
