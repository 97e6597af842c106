#pragma once

#include <QButtonGroup>
#include <QLineEdit>

#include <array>

#include "tuning/matrix.h"
#include "tuning/picker_desk.h"
#include "tuning/ui/page_parts.h"
#include "tuning/ui/patch_grid.h"
#include "tuning/ui/patch_swatch_view.h"
#include "tuning/ui/picker_box.h"
#include "tuning/ui/tuning_page.h"

namespace qv5123 {

/// The linear matrix page: measures the patches of the chart, fits the colour correction matrix to them, and
/// keeps one for each video mode and light source.
class CDlgIspMatrix : public TuningPage {
  Q_OBJECT

 public:
  explicit CDlgIspMatrix(PageHost& host);

  void save_to_user_data() override;
  void put_values(UserDataImage& image) const override { qv5123::save_to_user_data(values_, image); }
  void reload_from_user_data() override;
  void read_back() override { load_isp(); }
  void chosen_again() override;

 private:
  PickerBox* make_picker();
  QWidget* make_light_group();
  QWidget* make_calculation_group();
  QWidget* make_matrix_group();
  void add_matrix_row(QGridLayout* grid, int row);
  QLineEdit* make_code(int row, int column);

  void show_all();
  void show_measurements();
  void show_codes();
  void show_report();
  void enable_controls();
  bool take_codes();

  void show_selected_matrix();
  void get_color();
  Task<> run_get_color();
  void calculate();
  void clear();
  void set_row(int row);
  void load_file();
  void load_isp();
  Task<> run_save();
  Task<std::string> end_capture();

  MatrixValues values_;
  PickerDesk picker_desk_;
  PickerBox* picker_;
  PatchGrid* patches_;
  PatchSwatchView* swatches_;
  QSpinBox* patch_step_;
  QCheckBox* manual_;
  std::array<std::array<QLineEdit*, 3>, kMatrixRows> codes_{};
  bool measuring_patch_ = false;
  Flow measuring_;
};

}  // namespace qv5123
