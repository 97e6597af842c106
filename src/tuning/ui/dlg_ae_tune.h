#pragma once

#include <QBoxLayout>
#include <QButtonGroup>
#include <QPlainTextEdit>
#include <QSlider>

#include <string>

#include "base/ui/findable.h"
#include "tuning/dynamic_desk.h"
#include "tuning/ui/field_edits.h"
#include "tuning/ui/step_grid_view.h"
#include "tuning/ui/tuning_dialog.h"

namespace qv5123 {

/// The dynamic AE/AWB control page.
class CDlgAeTune : public TuningDialog, public ChoosesValues, private DynamicDesk::View {
  Q_OBJECT

 public:
  explicit CDlgAeTune(PageHost& host);

  bool save_writes_file() const override { return true; }
  void chosen_again() override;
  void choose_value(std::size_t field) override;

 private:
  QWidget* make_exposure_group();
  QWidget* make_colour_group();
  QLayout* make_source_choice();
  void add_source_sum_row(QGridLayout* grid, int row);
  void add_colour_rows(QGridLayout* grid, int row);
  QWidget* make_step_group();
  QLayout* make_bank_choice();
  QWidget* make_orientation_group();
  QWidget* make_decision_group();
  QWidget* make_smart_ir_group();
  QWidget* make_file_group();
  QWidget* make_more_area();
  void add_number_row(QGridLayout* grid, std::size_t number);

  /// What a "Set" button does.
  std::function<void()> setting(DynamicControl control, std::function<std::size_t()> index);
  std::function<void()> setting_of_source(DynamicControl control);
  /// The field of the chosen light source that `value` finds in the values.
  template <class Value>
  FieldEdits::FieldOf of_source(Value value);

  void take_typed() override { take_typed_text(this); }
  void show_values() override;
  void show_marks(const std::vector<ValueMark>& marks) override;
  void show_orientation();
  void show_light_source_bar();
  void show_bank();
  void choose_bank(BankId bank);
  void add_message(const std::string& text) override;

  DynamicDesk desk_;
  FieldEdits edits_;
  QButtonGroup* source_choice_;
  QSlider* sum_bar_ = nullptr;
  StepGridView* grid_;
  QCheckBox* ir_led_;
  QComboBox* video_mode_;
  QCheckBox *mirror_, *flip_, *none_;
  QPlainTextEdit* message_edit_;
};

}  // namespace qv5123
