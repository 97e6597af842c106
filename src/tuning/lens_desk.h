#pragma once

#include <memory>
#include <string>

#include "console/page_host.h"
#include "console/prompts.h"
#include "tuning/lens_calibration.h"
#include "tuning/picker_desk.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The lens shading page without its window.
class LensDesk final : public PageDesk<LensPage> {
 public:
  class View : public DeskView {
   public:
    /// A sweep has begun or a sample came in.
    virtual void show_calibration() {}
    /// "Check field" has begun, or measured at another place.
    virtual void show_field() {}
    virtual void clear_log() {}
    virtual void add_to_log(const std::string&) {}
    /// Whether the picker may be switched: not while a sweep does so by itself.
    virtual void allow_switch(bool) {}
  };
  LensDesk(DeskHost& host, UserDataImage& image,
           std::shared_ptr<MeasuringBoard> board = std::make_shared<MeasuringBoard>());
  void attach(View& view);

  const LensCalibration& calibration() const { return calibration_; }
  PickerDesk& picker() { return picker_; }
  bool calibrating() const { return calibrating_.running(); }

  void choose_screen(int index) { values_.screen_index = index; }
  /// Recomputes and sends the parameters once a calibration has succeeded.
  void move_ratio(int ratio);
  /// Clicks on "NTSC" and "PAL".
  void click_ntsc() { set_flicker(flicker_after_ntsc(values_.flicker)); }
  void click_pal() { set_flicker(flicker_after_pal(values_.flicker)); }
  /// "S" beside a row.
  void send_row(LensControl row);
  /// "CALIBRATION"; ignored while one is under way.
  void start_calibration(Prompts& prompts);
  /// "Check field": measures 9 x 5 places with the correction that the chip has; pressed again it stops.
  void press_check_field();
  bool checking_field() const { return checking_.running(); }
  const LensField& picture() const { return field_; }
  /// "File/Flash Save" on file and chip.
  Task<> save(PageHost& files);

  /// See Page::leave().
  Traffic leave() { return picker_.leave(); }
  Traffic control_traffic(int control) const override;

 private:
  FullSave make_save() override { return {lens_full_save(values_), {}, {}, {}}; }
  /// Whatever came back: what was not to be sent the ratio must not bring.
  void values_loaded() override { values_.calibrated = values_.calibrated && !declined_; }
  /// Not while a sweep switches the picker off by itself.
  void allow_switch(bool allowed);
  /// Where "Screen Size:" is not that of the chip's picture; empty where it is, or nobody knows.
  std::string other_size_text() const;
  void tell_other_size();
  void begin_sweep();
  void end_sweep(bool keys);
  void set_flicker(int mode);
  Task<> calibrate(Prompts& prompts);
  void take_sample(const LensSample& sample, std::size_t of);
  void finish(LensCalibrationResult result);
  /// What was fitted for a ratio of 0 is judged as if all of it were to be corrected.
  Task<LensDecision> decide(Prompts& prompts, LensCalibration found);
  Task<LensDecision> take_found(Prompts& prompts, const LensCalibration& found);
  void show_ripple();
  Task<> run_check_field();

  View nobody_;
  View* lens_view_ = &nobody_;
  std::shared_ptr<MeasuringBoard> board_;
  PickerDesk picker_;
  LensCalibration calibration_;
  std::optional<LensCalibration> found_;  ///< while its parameters leave
  bool declined_ = false;                 ///< the parameters of calibration_ were not to be sent
  Flow calibrating_;
  LensField field_;
  bool stop_checking_ = false;
  Flow checking_;
};

}  // namespace qv5123
