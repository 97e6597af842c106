#include "app/ui/tour_pages.h"

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <array>
#include <utility>

#include "app/ui/page_area.h"
#include "app/ui/qv5123_view.h"
#include "base/delay.h"
#include "content/ui/flash_map_view.h"
#include "content/ui/font_preview_area.h"
#include "registers/ui/dlg_isp_register.h"
#include "simulator/scene.h"
#include "tuning/awb_desk.h"
#include "tuning/gamma_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kLook{50};
/// A measurement that does not come to an end is left where it is.
constexpr int kMostLooks = 60 * 20;
constexpr const char* kChartScene = "chart";
constexpr const char* kFlat = "flat";
/// For each register of a category.
constexpr std::size_t kLooksToRead = 4;
constexpr std::array kPartedCurves{std::pair{GammaChannel::red, 0.38}, std::pair{GammaChannel::green, 0.5},
                                   std::pair{GammaChannel::blue, 0.6}};
constexpr std::array kFlashFiles{std::pair{"fw file", "firmware.bin"},
                                 std::pair{"font file", "fontT_16x24_.bin"},
                                 std::pair{"user file", "sample.dat"}};

/// The one with the most bit fields that list what their numbers mean.
std::size_t richest_register(const RegDescription& description) {
  std::vector<int> fields(description.registers.size());
  for (const RegBitField& field : description.bit_fields)
    if (field.sample.find(u'\n') != std::u16string::npos) ++fields[static_cast<std::size_t>(field.reg)];
  return static_cast<std::size_t>(std::ranges::max_element(fields) - fields.begin());
}

}  // namespace

template <class Desk>
Desk* TourPages::desk(const char* page) {
  return dynamic_cast<Desk*>(view_.values().desk(view_.values().page_named(page)));
}

Task<> TourPages::fill(PageId id) {
  join_curves();
  if (id == PageId::registers) co_await fill_registers();
  if (id == PageId::gamma) part_curves();
  if (id == PageId::lsc) co_await fill_lens();
  if (id == PageId::linear_matrix) co_await measure_chart();
  if (id == PageId::awb_tune) co_await fill_white_lines();
  if (id == PageId::font_editor) fill_font();
  if (id == PageId::make_flash) co_await fill_flash();
}

Task<> TourPages::while_true(std::function<bool()> busy) {
  for (int looks = 0; busy() && looks < kMostLooks; ++looks) co_await Delay(view_.scheduler(), kLook);
}

Task<> TourPages::switch_picker(PickerDesk& picker, bool on) {
  picker.click_switch(on);
  std::function<bool()> switching = [&picker] { return picker.switching(); };
  co_await while_true(std::move(switching));
}

/// A register that shows what the page can, and the values around it.
Task<> TourPages::fill_registers() {
  auto* page = dynamic_cast<CDlgIspRegister*>(view_.pages().page_widget(PageId::registers));
  if (!page) co_return;
  RegisterDesk& desk = page->register_desk();
  const std::vector<RegEntry>& registers = desk.sheet().description().registers;
  const std::size_t richest = richest_register(desk.sheet().description());
  if (richest >= registers.size()) co_return;
  desk.choose_register(richest);
  desk.load_category();
  const int category = registers[richest].category;
  const auto unread = [category](const RegEntry& entry) {
    return entry.category == category && entry.value < 0;
  };
  // A description may have registers that cannot be read.
  const std::size_t most = kLooksToRead * registers.size();
  for (std::size_t looks = 0; std::ranges::any_of(registers, unread) && looks < most; ++looks)
    co_await Delay(view_.scheduler(), kLook);
}

/// Each curve is another, and another than the file's.
void TourPages::part_curves() {
  GammaDesk* gamma = desk<GammaDesk>("gamma");
  if (!gamma) return;
  curves_ = gamma->model().numbers();
  const double typed = gamma->values().gamma_value;
  for (const auto& [channel, value] : kPartedCurves) {
    gamma->choose_channel(channel);
    gamma->type_gamma(value);
    gamma->compute_end(view_.prompts());
  }
  gamma->type_gamma(typed);
  gamma->choose_channel(GammaChannel::rgb);
  gamma->apply();
}

/// What the other pages tell of is not these.
void TourPages::join_curves() {
  GammaDesk* gamma = desk<GammaDesk>("gamma");
  if (!gamma || curves_.empty()) return;
  std::vector<WriteNote::Value> values;
  for (std::size_t field = 0; field < curves_.size(); ++field) values.push_back({field, curves_[field]});
  curves_.clear();
  gamma->take_values("Tour", values);
  gamma->apply();
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
  if (auto* glyphs = view_.pages().findChild<FontPreviewArea*>()) emit glyphs->glyph_picked('A');
}

/// With those of the sample files that are in the current folder.
Task<> TourPages::fill_flash() {
  const QWidget& page = *view_.pages().page_widget(PageId::make_flash);
  bool chosen = false;
  for (QLineEdit* edit : page.findChildren<QLineEdit*>()) {
    for (const auto& [name, file] : kFlashFiles) {
      if (edit->accessibleName() != name || !QFile::exists(file)) continue;
      edit->setText(file);
      chosen = true;
    }
  }
  const auto* map = page.findChild<FlashMapView*>();
  std::function<bool()> unread = [map, chosen] {
    return chosen &&
           std::ranges::all_of(map->look().places, [](const auto& part) { return part.filled == 0; });
  };
  co_await while_true(std::move(unread));
}

}  // namespace qv5123
