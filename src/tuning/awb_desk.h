#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "tuning/awb.h"
#include "tuning/chart_measurement.h"
#include "tuning/picker_desk.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The AWB page without its window.
class AwbDesk final : public PageDesk<AwbPage>, private MeasuredChart {
 public:
  class View : public DeskView {
   public:
    /// Which patch is chosen, and how far "Measure 18" has come.
    virtual void show_measuring() {}
  };
  AwbDesk(DeskHost& host, UserDataImage& image,
          std::shared_ptr<MeasuringBoard> board = std::make_shared<MeasuringBoard>());
  void attach(View& view);

  PickerDesk& picker() { return picker_; }

  /// The patch that the next "GET COLOR" is for, 0..23.
  void choose_patch(std::size_t patch) { patch_ = patch; }
  std::size_t patch() const { return patch_; }
  /// Whether the patch after the one that was measured is then chosen.
  bool advances() const { return advances_; }
  void choose_advance(bool advances) { advances_ = advances; }
  /// "S" beside a line: limits its words and sends them.
  void send_line(AwbControl line);
  /// The chip's menu keys, "None", "Set" and "Check"; `name` is the button's.
  void press(const std::string& name, RegisterWrite key) { send_noted(name, {Batch{key}}, {}); }
  /// "GET COLOR"; what is pressed while one is under way comes after it.
  void get_color();
  bool measuring() const { return measuring_.running(); }
  /// "From LinearMatrix": the colored patches as that page has measured them.
  void take_from_matrix();
  /// "Measure 18": the colored patches from the chart's four corners, which are set on the linear matrix
  /// page. Pressed again it stops; where a reading is doubtful it stops by itself, and goes on once "GET
  /// COLOR" has measured that patch.
  void measure_all();
  bool measuring_all() const { return run_.running(); }
  /// Of "Measure 18".
  static constexpr std::size_t kColouredPatches = 18;
  std::size_t patches_left() const { return kColouredPatches - patch_; }
  /// "File/Flash Save".
  Task<> save();

  /// See Page::leave().
  Traffic leave() { return picker_.leave(); }
  Traffic control_traffic(int control) const override;

 private:
  FullSave make_save() override { return {awb_full_save(values_), {}, {}, {}}; }
  void limit(const std::vector<std::size_t>& fields) override;
  void values_loaded() override { run_.values_replaced(); }
  Task<> run_get_color();
  Task<bool> measure(std::size_t patch);
  Task<bool> read(std::size_t patch);
  Task<> run_all(std::array<PickerPosition, kPatches> places, std::size_t first);
  void approach(std::size_t patch, PickerPosition place) override;
  const MeasuredColours& readings() const override { return seen_; }
  MeasuredColours patches() const override;
  void take_reading(std::size_t patch, const PerColour& colour) override;
  std::string reading_text(std::size_t patch) const override;
  void picker_switched();

  View nobody_;
  View* awb_view_ = &nobody_;
  std::shared_ptr<MeasuringBoard> board_;
  bool picker_on_ = false;
  IspBytes picker_off_;
  PickerPosition place_;
  int step_index_ = 4;
  PickerDesk picker_;
  std::size_t patch_ = 0;
  bool advances_ = true;
  std::size_t measured_patch_ = 0;
  /// Presses of "GET COLOR" that wait: for which patch, or for the one that is chosen by then.
  std::deque<std::optional<std::size_t>> presses_;
  Flow measuring_;
  MeasuredColours seen_{};  ///< by "Measure 18", and since it has begun
  ChartMeasurement run_;
  Flow running_all_;
};

}  // namespace qv5123
