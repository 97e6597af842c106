#pragma once

#include <array>
#include <string>

#include "support/chip_talk.h"
#include "support/desk_bench.h"
#include "tuning/chart_run.h"
#include "tuning/matrix_desk.h"

namespace qv5123::test {

/// The world around a page's desk, on a simulated chip that looks at a scene.
template <class Bench = DeskBench>
class OnAChip : public Bench {
 protected:
  OnAChip() {
    this->fake_.sender.chip = [this](const std::string& bytes) { this->fake_.receive(ask(chip_, bytes)); };
  }
  void aim(const char* scene, const char* noise = "low") {
    CameraTruth truth;
    set_noise(truth, noise);
    chip_.set_camera(Camera(*scene_named(scene), truth));
    chip_.look();
  }

  ListeningChip chip_;
};

inline PickerPosition middle_of(const char* scene, std::size_t patch) {
  const PicturePoint middle = patch_middle(*scene_named(scene), patch);
  return {middle.x, middle.y};
}

using CornerPlaces = std::array<PickerPosition, kCornerPatches.size()>;

/// Sets the four corners, the cursor at each of these places. The picker has to be on.
inline void set_corners(MatrixDesk& desk, FakeWire& wire, const CornerPlaces& places) {
  for (std::size_t i = 0; i < places.size(); ++i) {
    desk.choose_patch(kCornerPatches[i]);
    desk.picker().type_x(places[i].x);
    desk.picker().type_y(places[i].y);
    wire.advance(2000);
    desk.set_corner();
  }
}

/// The same where the scene has its chart.
inline void set_corners(MatrixDesk& desk, FakeWire& wire, const char* scene) {
  CornerPlaces places;
  for (std::size_t i = 0; i < places.size(); ++i) places[i] = middle_of(scene, kCornerPatches[i]);
  set_corners(desk, wire, places);
}

inline void type_patches(MatrixDesk& desk, const MeasuredColours& counts) {
  for (std::size_t patch = 0; patch < kPatches; ++patch)
    for (std::size_t colour = 0; colour < 3; ++colour) desk.type_patch(patch, colour, counts[patch][colour]);
}

}  // namespace qv5123::test
