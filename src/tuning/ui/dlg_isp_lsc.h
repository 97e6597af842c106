#pragma once

#include <QPlainTextEdit>

#include <array>

#include "tuning/lens_calibration.h"
#include "tuning/ui/lens_chart_view.h"
#include "tuning/ui/page_parts.h"
#include "tuning/ui/picker_box.h"
#include "tuning/ui/tuning_page.h"

namespace qv5123 {

/// The lens shading page: sweeps the picker over a flat scene and fits what makes it even.
class CDlgIspLSC : public TuningPage {
  Q_OBJECT

 public:
  explicit CDlgIspLSC(PageHost& host);

  void save_to_user_data() override;
  void put_values(UserDataImage& image) const override { qv5123::save_to_user_data(values_, image); }
  bool save_writes_file() const override { return true; }
  void reload_from_user_data() override;
  void read_back() override { load_isp(); }

 private:
  PickerBox* make_picker();
  QWidget* make_parameter_group();
  void add_parameter_row(QGridLayout* grid, int row, const QString& caption, PerColour& parameter,
                         std::uint8_t address, std::array<QSpinBox*, 3>& edits, std::function<void()> send);
  QWidget* make_ratio_row();
  QWidget* make_flicker_group();
  QWidget* make_log_row();

  void show_parameters();
  void show_flicker();
  void add_to_log(const std::string& text);

  void ratio_moved(int ratio);
  void set_flicker(int mode);
  void start_calibration();
  Task<> calibrate();
  void take_sample(const LensSample& sample, std::size_t of);
  void finish(LensCalibrationResult result);
  void load_file();
  void load_isp();
  Task<> run_save();

  LensValues values_;
  LensCalibration calibration_;
  PickerBox* picker_;
  LensChartView* chart_;
  QPlainTextEdit* log_;
  std::array<QSpinBox*, 3> parameter1_{};
  std::array<QSpinBox*, 3> parameter2_{};
  QCheckBox* ntsc_;
  QCheckBox* pal_;
  Flow calibrating_;
};

}  // namespace qv5123
