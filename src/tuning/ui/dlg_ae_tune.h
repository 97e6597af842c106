#pragma once

#include <QBoxLayout>
#include <QButtonGroup>
#include <QPlainTextEdit>
#include <array>

#include "tuning/dynamic.h"
#include "tuning/ui/page_parts.h"
#include "tuning/ui/step_grid_view.h"
#include "tuning/ui/tuning_page.h"

namespace qv5123 {

/// The dynamic AE/AWB control page.
class CDlgAeTune : public TuningPage {
  Q_OBJECT

 public:
  explicit CDlgAeTune(PageHost& host);

  void save_to_user_data() override;
  void put_values(UserDataImage& image) const override;
  bool save_writes_file() const override { return true; }
  void reload_from_user_data() override;
  void read_back() override { load_from_isp(); }
  void chosen_again() override;

 private:
  QWidget* make_exposure_group();
  QWidget* make_colour_group();
  QLayout* make_source_choice();
  void add_source_sum_row(QGridLayout* grid, int row);
  void add_colour_rows(QGridLayout* grid, int row);
  QWidget* make_step_group();
  QWidget* make_orientation_group();
  QWidget* make_decision_group();
  QWidget* make_smart_ir_group();
  QWidget* make_file_group();
  QWidget* make_more_area();

  std::size_t source() const;
  StepBank* shown_bank();
  void take_grid();
  void show_values();
  void show_orientation();
  void show_source();
  void show_light_source();
  void show_bank();

  void set_number(std::size_t number);
  Task<> set_gain(std::size_t number);
  void set_step_row(std::size_t row);
  void set_weights();
  void change_orientation(bool mirror, bool flip);
  Task<> send_orientation();
  void load_from_file();
  void load_from_isp();
  Task<> run_save();
  Task<> tell(std::vector<StepMessage> messages);

  DynamicValues values_;
  std::array<SliderRow, kDynamicNumbers.size()> numbers_;
  QButtonGroup* source_choice_;
  QSlider* sum_bar_;
  QSpinBox* sum_kind_;
  QSpinBox* sum_value_;
  SliderRow saturation_, r_weight_, b_weight_, hue_, dpc_;
  StepGridView* grid_;
  QCheckBox* ir_led_;
  QComboBox* video_mode_;
  QComboBox* smart_ir_;
  QCheckBox *mirror_, *flip_, *none_;
  QPlainTextEdit* message_edit_;
};

}  // namespace qv5123
