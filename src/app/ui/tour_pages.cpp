#include "app/ui/tour_pages.h"

#include <QPushButton>

#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/delay.h"
#include "simulator/scene.h"
#include "tuning/awb_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kLook{50};
/// A measurement that does not come to an end is left where it is.
constexpr int kMostLooks = 60 * 20;
constexpr const char* kChartScene = "chart";
constexpr const char* kFlat = "flat";

}  // namespace

template <class Desk>
Desk* TourPages::desk(const char* page) {
  return dynamic_cast<Desk*>(view_.values().desk(view_.values().page_named(page)));
}

Task<> TourPages::fill(PageId id) {
  if (id == PageId::lsc) co_await fill_lens();
  if (id == PageId::linear_matrix) co_await measure_chart();
  if (id == PageId::awb_tune) co_await fill_white_lines();
  if (id == PageId::font_editor) fill_font();
}

Task<> TourPages::while_true(std::function<bool()> busy) {
  for (int looks = 0; busy() && looks < kMostLooks; ++looks) co_await Delay(view_.scheduler(), kLook);
}

Task<> TourPages::switch_picker(PickerDesk& picker, bool on) {
  picker.click_switch(on);
  std::function<bool()> switching = [&picker] { return picker.switching(); };
  co_await while_true(std::move(switching));
}

Task<> TourPages::fill_lens() {
  LensDesk* lens = desk<LensDesk>("lsc");
  if (!lens) co_return;
  aim_(kFlat);
  co_await switch_picker(lens->picker(), true);
  lens->start_calibration(view_.prompts());
  std::function<bool()> calibrating = [lens] { return lens->calibrating(); };
  co_await while_true(std::move(calibrating));
  lens->press_check_field();
  std::function<bool()> checking = [lens] { return lens->checking_field(); };
  co_await while_true(std::move(checking));
  aim_(kChartScene);
}

Task<> TourPages::measure_chart() {
  MatrixDesk* matrix = desk<MatrixDesk>("matrix");
  if (!matrix) co_return;
  if (!matrix->fits().calculated) co_await measure(*matrix);
  matrix->calculate(view_.prompts());
  // A report is of what the chip holds.
  for (const MatrixControl row : {MatrixControl::red_row, MatrixControl::green_row, MatrixControl::blue_row})
    matrix->set_row(row, view_.prompts());
}

Task<> TourPages::measure(MatrixDesk& matrix) {
  aim_(kChartScene);
  const Scene scene = *scene_named(kChartScene);
  for (const std::size_t patch : kCornerPatches) {
    const PicturePoint middle = patch_middle(scene, patch);
    matrix.choose_patch(patch);
    matrix.picker().type_x(middle.x);
    matrix.picker().type_y(middle.y);
    matrix.set_corner();
  }
  co_await switch_picker(matrix.picker(), true);
  matrix.measure_all();
  std::function<bool()> measuring = [&matrix] { return matrix.measuring_all(); };
  co_await while_true(std::move(measuring));
  co_await switch_picker(matrix.picker(), false);
}

Task<> TourPages::fill_white_lines() {
  view_.pages().choose(PageId::linear_matrix);
  co_await measure_chart();
  view_.pages().choose(PageId::awb_tune);
  if (AwbDesk* awb = desk<AwbDesk>("awb")) awb->take_from_matrix();
}

void TourPages::fill_font() {
  for (QPushButton* button : view_.pages().findChildren<QPushButton*>())
    if (button->accessibleName() == "Fill glyphs") button->click();
}

}  // namespace qv5123
